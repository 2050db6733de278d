#pragma once

#include <QAccessibleWidget>
#include <vector>

class LXMenulist;

// A pop-up list as screen readers see it: a child of the button that opened it, with entries that
// can be pressed. A plain pop-up window has no place in the tree, and its entries can only be
// selected.
class AccessibleMenulist final : public QAccessibleWidget {
 public:
  explicit AccessibleMenulist(LXMenulist* list);
  ~AccessibleMenulist() override;

  QAccessibleInterface* parent() const override;
  int childCount() const override;
  QAccessibleInterface* child(int index) const override;
  int indexOfChild(const QAccessibleInterface* child) const override;
  QAccessibleInterface* childAt(int x, int y) const override;
  QAccessibleInterface* focusChild() const override;
  QString text(QAccessible::Text kind) const override;

 private:
  LXMenulist& m_list;
  // Ids of the entries requested so far; 0 for the others.
  mutable std::vector<QAccessible::Id> m_entries;
};
