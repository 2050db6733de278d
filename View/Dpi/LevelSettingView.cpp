#include "View/Dpi/LevelSettingView.h"

#include <algorithm>

#include "Action/Device/DeviceSettings.h"
#include "Action/Record/EditState.h"
#include "ArtworkFrames.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Screen/Frames.h"

namespace {

namespace frames = Artwork::LevelSettingView;

}  // namespace

DpiLevelsView::Places LevelSettingView::places() {
  return {{frameRect(frames::level1), frameRect(frames::level2), frameRect(frames::level3),
           frameRect(frames::level4), frameRect(frames::level5)},
          frameRect(frames::sliderView),
          frameRect(frames::enableXYChk),
          TagEnableXY};
}

LevelSettingView::LevelSettingView()
    : DpiLevelsView({frames::screenWidth, frames::screenHeight}, "LevelSettingView_Normal.png",
                    places()) {}

void LevelSettingView::initControls() {
  DpiLevelsView::initControls();
  addButton(frameRect(frames::applyBtn), TagApply, "applyBtn", "Apply");
  addButton(frameRect(frames::okBtn), TagClose, "okBtn", "Close");
  addButton(frameRect(frames::cancelBtn), TagCancel, "cancelBtn", "Cancel");
}

void LevelSettingView::saveData() {
  saveDPiData(currSetProfile.currSelectDPI);
  saveDpiDataPro();
}

void LevelSettingView::buttonAction(LXButton& sender) {
  DpiLevelsView::buttonAction(sender);
  switch (sender.tag()) {
    case TagApply:
      saveData();
      currFWProfile = selProfile;
      std::copy(std::begin(currSetProfile.xSensArr), std::end(currSetProfile.xSensArr),
                currFWProfile.xSensArr);
      std::copy(std::begin(currSetProfile.ySensArr), std::end(currSetProfile.ySensArr),
                currFWProfile.ySensArr);
      NerinAction::setSettingToDevice();
      return;
    case TagClose:
      saveData();
      selProfile = currSetProfile;
      endWindow(1);
      return;
    case TagCancel:
      cancelAndEnd();
      return;
    default:
      return;
  }
}

// What is sent again are the settings of the working copy, so that the mouse keeps what was tried
// until the profile is written the next time.
void LevelSettingView::cancelEdit() {
  currFWProfile = selProfile;
  NerinAction::setSettingToDevice();
}
