#pragma once

#include <cstdint>
#include <memory>

#include "Kit/Desktop/KeyTracker.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "View/Assign/KeyAssignSubView.h"

class LXTextField;
class MenuInfo;

// Assigns a mouse function from a list, or a captured key. While the keyboard is chosen and this
// view has the focus, it captures every key. Esc twice, or a click elsewhere, ends the capture;
// after Esc, the view keeps the previous key, or Esc if there was none.
class SubSingleKeyView : public KeyAssignSubView,
                         public LXMenulistDelegate,
                         public LXSetpPanelDelegate {
  Q_OBJECT

 public:
  enum Choice : int { MouseFunction = 1, KeyboardKey = 2 };
  static constexpr int TagFunction = 292;
  static constexpr std::int32_t noKey = -1;

  explicit SubSingleKeyView(QWidget* parent);

  void fillSettingData() override;
  void saveData() override;
  void closePopMenu() override;
  void buttonAction(LXButton& sender) override;
  void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) override;
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  // Shows the current assignment of the button.
  void showCurrentCaption();

  // The Mac virtual key code, or noKey.
  std::int32_t selKeyCode() const { return m_selKeyCode; }
  int choice() const;
  LXMenulist* singleList() const { return m_singleList.get(); }

 protected:
  void initData() override;
  void initControls() override;
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  bool isCapturing() const;
  void take(const QKeyEvent& event);
  void setSelKeyCode(std::int32_t keyCode);
  LXTextField* addDisplay(const QRect& frame, const char* name, const char* nameKey);

  LXSetpPanelObj* m_singleSetp = nullptr;
  LXButton* m_mouseFunChk = nullptr;
  LXButton* m_keybordChk = nullptr;
  LXButton* m_selBtn = nullptr;
  LXTextField* m_newKeyEdt = nullptr;
  LXTextField* m_oldKeyEdt = nullptr;
  LXTextField* m_noteTxt = nullptr;
  std::unique_ptr<LXMenulist> m_singleList;
  std::shared_ptr<MenuInfo> m_function;
  KeyTracker m_keys;
  std::int32_t m_selKeyCode = noKey;
  bool m_wasEscape = false;
  // Esc was pressed twice and not yet released.
  bool m_isLeaving = false;
  std::int32_t m_keyBeforeEscape = noKey;
};
