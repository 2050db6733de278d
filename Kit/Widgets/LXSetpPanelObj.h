#pragma once

#include <QObject>
#include <vector>

class LXButton;
class LXSetpPanelObj;
class QWidget;

// Is asked before a step panel changes and told after it. Indices count from 1; 0 is none.
class LXSetpPanelDelegate {
 public:
  virtual ~LXSetpPanelDelegate() = default;
  virtual bool shouldSelectIndex(int /*newIndex*/, int /*oldIndex*/, LXSetpPanelObj& /*sender*/) {
    return true;
  }
  virtual void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) = 0;
};

// A group of buttons of which one is selected, or none. The arrow keys move through it. Owns
// neither the buttons nor their views.
class LXSetpPanelObj : public QObject {
  Q_OBJECT

 public:
  explicit LXSetpPanelObj(QObject* parent = nullptr);

  // The view, if any, shows only while its item is selected. An item without a button is selected
  // by the program alone.
  void addItem(LXButton* button, QWidget* panBox = nullptr);
  // Not owned; has to outlive the panel.
  void setSetpDelegate(LXSetpPanelDelegate* delegate) { m_delegate = delegate; }

  // Selects an item after the delegate allowed it. The selected one again, and an index that no
  // item has, are passed over.
  void selectindex(int index);
  // Back to none, without a word to the delegate.
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
  // Null for an item without a button, and for no item.
  LXButton* buttonOf(int index) const;
  void show();

  std::vector<Item> m_items;
  LXSetpPanelDelegate* m_delegate = nullptr;
  int m_current = 0;
};
