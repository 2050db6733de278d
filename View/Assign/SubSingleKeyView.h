#pragma once

#include <cstdint>
#include <memory>

#include "Kit/Desktop/KeyTracker.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "View/Assign/KeyAssignSubView.h"

class KeyboardHold;
class LXTextField;
class MenuInfo;
class QLabel;

// Assigns a mouse function from a list, or a key: captured, or from a list of the keys that a
// keyboard may lack.
//
// Choosing the keyboard, a click on the field, and Return or Space while the view has the focus
// start a capture. It owns the keyboard: also keys of the desktop are keys like any other. Esc
// twice, or a click elsewhere, ends it; after Esc the view keeps the key from before, or Esc if
// there was none.
class SubSingleKeyView : public KeyAssignSubView,
                         public LXMenulistDelegate,
                         public LXSetpPanelDelegate {
  Q_OBJECT

 public:
  enum Choice : int { MouseFunction = 1, KeyboardKey = 2 };
  enum Tag : int { TagFunction = 292, TagKeyList = 293 };
  static constexpr std::int32_t noKey = -1;

  explicit SubSingleKeyView(QWidget* parent);
  ~SubSingleKeyView() override;

  void fillSettingData() override;
  void saveData() override;
  void closePopMenu() override;
  void buttonAction(LXButton& sender) override;
  void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) override;
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  assignmentnotes::Note note() const override;
  // Shows the current assignment of the button.
  void showCurrentCaption();

  // The Mac virtual key code, or noKey.
  std::int32_t selKeyCode() const { return m_selKeyCode; }
  int choice() const;
  bool isCapturing() const { return m_isCapturing; }
  // Ends the capture, if any, and keeps the key.
  void endCapture();
  // Ends the capture, if any, and takes the focus from this view.
  void leave();
  LXMenulist* singleList() const { return m_singleList.get(); }

 protected:
  void initData() override;
  void initControls() override;
  bool event(QEvent* event) override;
  // A press elsewhere ends the capture, also one that takes no focus.
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void addKeyControls();
  void startCapture();
  void take(const QKeyEvent& event);
  void setSelKeyCode(std::int32_t keyCode);
  void chooseKey(std::int32_t keyCode);
  void openKeyList();
  // Says how a capture begins and ends.
  void showHint();
  QString hint() const;
  LXTextField* addDisplay(const QRect& frame, const char* name, const char* nameKey);

  LXSetpPanelObj* m_singleSetp = nullptr;
  LXButton* m_mouseFunChk = nullptr;
  LXButton* m_keybordChk = nullptr;
  LXButton* m_selBtn = nullptr;
  LXButton* m_keyListBtn = nullptr;
  LXTextField* m_newKeyEdt = nullptr;
  LXTextField* m_oldKeyEdt = nullptr;
  QLabel* m_hintTxt = nullptr;
  std::unique_ptr<LXMenulist> m_singleList;
  std::unique_ptr<LXMenulist> m_keyList;
  std::shared_ptr<MenuInfo> m_function;
  KeyTracker m_keys;
  std::unique_ptr<KeyboardHold> m_keyboard;
  std::int32_t m_selKeyCode = noKey;
  // Showing a stored assignment is not choosing it.
  bool m_isFilling = false;
  bool m_isCapturing = false;
  bool m_wasEscape = false;
  // Esc was pressed twice and not yet released.
  bool m_isLeaving = false;
  std::int32_t m_keyBeforeEscape = noKey;
};
