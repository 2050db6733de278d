#pragma once

#include <QObject>
#include <vector>

class LXButton;
class LXSetpPanelObj;
class QWidget;

// Is asked before a step panel changes and notified afterwards. Indices start at 1; 0 is none.
class LXSetpPanelDelegate {
 public:
  virtual ~LXSetpPanelDelegate() = default;
  virtual bool shouldSelectIndex(int /*newIndex*/, int /*oldIndex*/, LXSetpPanelObj& /*sender*/) {
    return true;
  }
  virtual void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) = 0;
};

// A group of buttons of which one or none is selected. The arrow keys move through it. Owns neither
// the buttons nor their views.
class LXSetpPanelObj : public QObject {
  Q_OBJECT

 public:
  explicit LXSetpPanelObj(QObject* parent = nullptr);

  // The view, if any, is shown only while its item is selected. Only the program can select an item
  // without a button.
  void addItem(LXButton* button, QWidget* panBox = nullptr);
  // Not owned; must outlive the panel.
  void setSetpDelegate(LXSetpPanelDelegate* delegate) { m_delegate = delegate; }

  // Selects an item if the delegate allows it. Ignores the selected index and an index without an
  // item.
  void selectindex(int index);
  // Resets the selection to none without notifying the delegate.
  void resetSetp();
  int currentSetp() const { return m_current; }
  int itemCount() const { return static_cast<int>(m_items.size()); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Item {
    LXButton* button;
    QWidget* panBox;
  };

  int indexOf(const QObject* button) const;
  // Null if the item has no button or the index has no item.
  LXButton* buttonOf(int index) const;
  void show();

  std::vector<Item> m_items;
  LXSetpPanelDelegate* m_delegate = nullptr;
  int m_current = 0;
};
