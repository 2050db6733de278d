#pragma once

#include "View/Dpi/DpiLevelsView.h"

// The DPI levels alone, as the assignment of a DPI function opens them.
class LevelSettingView : public DpiLevelsView {
  Q_OBJECT

 public:
  enum Tag : int { TagApply = 320, TagClose = 321, TagCancel = 322, TagEnableXY = 323 };
  static constexpr int dragHeight = 45;

  LevelSettingView();

  void refreshData() override { fillSettingData(); }
  void saveData() override;
  void buttonAction(LXButton& sender) override;
  void progessBarAction(LXProgressBar& /*sender*/) override {}

 protected:
  void initControls() override;
  void cancelEdit() override;

 private:
  static Places places();
};
