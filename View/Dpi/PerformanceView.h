#pragma once

#include <array>
#include <memory>

#include "Action/Record/Limits.h"
#include "Kit/Widgets/LXMenulist.h"
#include "View/Dpi/DpiLevelsView.h"

// The performance window: the DPI levels and how many of them are in use, the report rate, which
// goes to the mouse at once, and the lift-off height.
class PerformanceView : public DpiLevelsView, public LXMenulistDelegate {
  Q_OBJECT

 public:
  enum Tag : int {
    TagLevelSel = 250,
    TagEnableXY = 251,
    TagApply = 256,
    TagClose = 257,
    TagCancel = 258,
    TagLift = 259,
  };
  // The maximum of the slider. The record allows one more.
  static constexpr int maximumShownLift = static_cast<int>(limits::maximumLift) - 1;

  PerformanceView();

  void refreshData() override;
  void fillSettingData() override;
  void saveData() override;
  void buttonAction(LXButton& sender) override;
  void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) override;
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  void progessBarAction(LXProgressBar& sender) override;
  LXMenulist* levelMenuList() const { return m_levelMenuList.get(); }

 protected:
  void initControls() override;
  void applyEdit() override;
  void keepEdit() override;
  void cancelEdit() override;

 private:
  static constexpr std::size_t rates = 4;

  LXButton* m_levelSelBtn = nullptr;
  std::unique_ptr<LXMenulist> m_levelMenuList;
  std::array<LXButton*, rates> m_rateBtns{};
  LXSetpPanelObj* m_rateSetp = nullptr;
  LXProgressBar* m_liftPro = nullptr;
};
