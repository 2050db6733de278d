#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "Action/Record/Records.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "View/Windows/ChildView.h"

class KeyAssignSubView;
class LXTextField;
class MenuInfo;
class SubSingleKeyView;

// Selects what a button of the mouse does. Apply tries it on the mouse, Close keeps it in the
// edited profile, Cancel restores the button on the mouse.
class KeyAssignView : public ChildView, public LXMenulistDelegate, public LXSetpPanelDelegate {
  Q_OBJECT

 public:
  enum Tag : int { TagType = 270, TagApply = 271, TagClose = 272, TagCancel = 273 };
  // The kinds of assignment, with the ids of the catalogue's key-assign menu.
  enum Type : std::int32_t {
    NoType = 0,
    Default = 1,
    Macro = 2,
    SingleKey = 3,
    Sensitivity = 4,
    Launch = 5,
    Disabled = 6,
  };

  KeyAssignView();
  ~KeyAssignView() override;
  // Ends the capture of a key.
  bool staysOpen() override;
  // That of the part that is shown.
  std::string helpChapter() const override;

  // 0..15
  void setBtnIndex(int btnIndex) { m_btnIndex = btnIndex; }
  int btnIndex() const { return m_btnIndex; }
  void setTmpBtnInfo(const _BTN_INFO& info) { m_tmpBtnInfo = info; }
  const _BTN_INFO& tmpBtnInfo() const { return m_tmpBtnInfo; }
  // The name of the button, shown beside the title.
  void setButtonName(const QString& name);
  std::int32_t currFunId() const { return m_currFunId; }

  void refreshData() override;
  void fillSettingData() override;
  void saveData() override;
  void buttonAction(LXButton& sender) override;
  // Shows the part for a kind, 0-based; no part for any other number.
  void setCurrType(std::int32_t type);
  // Selects the kind of a menu entry; null selects none.
  void setCurrMenuData(const std::shared_ptr<MenuInfo>& entry);
  void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) override;
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  // The mouse was removed: closes the window.
  void devOutplusPro();
  LXMenulist* keyAssMenuList() const { return m_keyAssMenuList.get(); }

 protected:
  void initData() override;
  void initControls() override;
  void initNotify() override;
  void deallocNotify() override;
  void applyEdit() override;
  void keepEdit() override;
  void cancelEdit() override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void restoreBtnInfo();
  // Says what an assignment that lacks something will do.
  void sayEffect();
  // The part for the chosen kind; null for a kind without one.
  KeyAssignSubView* currentPart() const;

  int m_btnIndex = 0;
  _BTN_INFO m_tmpBtnInfo{};
  std::int32_t m_currFunId = NoType;
  bool m_isMouseGone = false;
  bool m_hasSaidEffect = false;
  LXButton* m_comSelBtn = nullptr;
  LXTextField* m_buttonTxt = nullptr;
  LXSetpPanelObj* m_keyAssignSetp = nullptr;
  SubSingleKeyView* m_singleKeyView = nullptr;
  // In the order of the panel's items.
  std::array<KeyAssignSubView*, 4> m_subViews{};
  std::unique_ptr<LXMenulist> m_keyAssMenuList;
};
