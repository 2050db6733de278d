#pragma once

#include <QListWidget>
#include <QPointer>
#include <memory>

#include "Kit/Core/LXTreeNode.h"

class LXMenulist;
class QLabel;

// Receives the chosen entry of a menu list.
class LXMenulistDelegate {
 public:
  virtual ~LXMenulistDelegate() = default;
  virtual void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) = 0;
};

// A pop-up list of the entries below a tree node. Keeps the nodes that it shows alive.
//
// It opens on the current choice, which Return chooses again. What is typed leaves only the entries
// that hold it. Esc takes back what was typed, and then closes the list. A press beside closes it,
// also one on the opener, which does not open it again.
class LXMenulist : public QListWidget {
  Q_OBJECT

 public:
  // The entries of the node, in a font of this many pixels.
  LXMenulist(std::shared_ptr<LXTreeNode> node, int fontSize, QWidget* parent = nullptr);

  void setMenuNode(std::shared_ptr<LXTreeNode> node);
  const std::shared_ptr<LXTreeNode>& menuNode() const { return m_node; }
  // A list has one delegate at a time; whatever opens a shared list becomes its delegate.
  void setDelegate(LXMenulistDelegate* delegate) { m_delegate = delegate; }
  LXMenulistDelegate* menuDelegate() const { return m_delegate; }
  void setMenuWidth(int width) { m_width = width; }
  int menuWidth() const { return m_width; }

  // What the list says without any entry, and when no entry holds what was typed.
  void setEmptyText(const QString& text) { m_emptyText = text; }
  void setNoMatchText(const QString& text) { m_noMatchText = text; }
  // Instead of the entries; empty while some are shown.
  QString note() const;

  // Return on the entry with which the list opened only closes it, for a list whose choices load
  // something over what the user has edited.
  void setReturnKeeps(bool keeps) { m_returnKeeps = keeps; }

  // `position` is the top left corner in screen coordinates; it is moved to keep the list on the
  // screen. `currentRow` is the current choice, a negative number for none.
  void showMenulist(const QPoint& position, int currentRow = noRow);
  void hideMenulist() { hide(); }
  bool isShowMenu() const { return isVisible(); }
  // The button that last opened the list.
  void setOpener(QWidget* opener) { m_opener = opener; }
  QWidget* opener() const { return m_opener; }
  // Does the same as a click on the current entry of an open list.
  void chooseCurrent();
  // What was typed since the list opened.
  const QString& filter() const { return m_filter; }
  // The row of the first entry with that title; noRow without one.
  int rowOf(const QString& title) const;

  static constexpr int noRow = -1;

 protected:
  bool event(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;

 private:
  void choose(const QListWidgetItem* item);
  // No row is current with noRow.
  void makeCurrent(int row);
  void moveCurrent(int key);
  void setFilter(const QString& filter);
  void place();
  int shownRows() const;
  int noteHeight() const;
  int fullHeight() const;

  std::shared_ptr<LXTreeNode> m_node;
  LXMenulistDelegate* m_delegate = nullptr;
  int m_width = 0;
  QPointer<QWidget> m_opener;
  QLabel* m_filterLbl;
  QString m_filter;
  QString m_emptyText;
  QString m_noMatchText;
  QPoint m_wantedPosition;
  // Where the pointer was when the list opened.
  QPoint m_pointerAtStart;
  int m_rowAtStart = noRow;
  bool m_returnKeeps = false;
};
