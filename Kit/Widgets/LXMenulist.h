#pragma once

#include <QListWidget>
#include <QPointer>
#include <memory>

#include "Kit/Core/LXTreeNode.h"

class LXMenulist;

// Receives the chosen entry of a menu list.
class LXMenulistDelegate {
 public:
  virtual ~LXMenulistDelegate() = default;
  virtual void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) = 0;
};

// A pop-up list of the entries below a tree node. Keeps the nodes that it shows alive.
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

  // `position` is the top left corner in screen coordinates; it is moved to keep the list on the
  // screen. An empty list does not open.
  void showMenulist(const QPoint& position);
  void hideMenulist() { hide(); }
  bool isShowMenu() const { return isVisible(); }
  // The button that last opened the list.
  void setOpener(QWidget* opener) { m_opener = opener; }
  QWidget* opener() const { return m_opener; }
  // Does the same as a click on the current entry of an open list.
  void chooseCurrent();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void choose(const QListWidgetItem* item);
  int fullHeight() const;

  std::shared_ptr<LXTreeNode> m_node;
  LXMenulistDelegate* m_delegate = nullptr;
  int m_width = 0;
  QPointer<QWidget> m_opener;
};
