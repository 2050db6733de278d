#pragma once

#include "View/Dpi/DpiLevelsView.h"

// Only the DPI levels, for the assignment of a DPI function.
class LevelSettingView : public DpiLevelsView {
  Q_OBJECT

 public:
  enum Tag : int { TagApply = 320, TagClose = 321, TagCancel = 322, TagEnableXY = 323 };
  static constexpr int dragHeight = 45;

  LevelSettingView();

  void refreshData() override { fillSettingData(); }
  void saveData() override;
  void progessBarAction(LXProgressBar& /*sender*/) override {}

 protected:
  void initControls() override;
  void applyEdit() override;
  void keepEdit() override;
  void cancelEdit() override;
};
