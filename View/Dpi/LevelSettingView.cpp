#include "View/Dpi/LevelSettingView.h"

#include <algorithm>

#include "Action/Device/DeviceSettings.h"
#include "Action/Record/EditState.h"
#include "ArtworkFrames.h"
#include "View/Screen/Frames.h"

namespace {

using frames = Artwork::LevelSettingView;

}  // namespace

LevelSettingView::LevelSettingView()
    : DpiLevelsView({frames::screenWidth, frames::screenHeight}, "LevelSettingView_Normal.png",
                    placesIn<frames>(TagEnableXY)) {}

void LevelSettingView::initControls() {
  DpiLevelsView::initControls();
  addEndButtons({frameRect(frames::applyBtn), TagApply}, {frameRect(frames::okBtn), TagClose},
                {frameRect(frames::cancelBtn), TagCancel});
}

void LevelSettingView::saveData() {
  saveDPiData(editState->currSetProfile().currSelectDPI);
  saveDpiDataPro();
}

void LevelSettingView::applyEdit() {
  saveData();
  const _Nerin_PROFILE& tried = editState->currSetProfile();
  _Nerin_PROFILE& image = editState->currFWProfile();
  image = editState->selProfile();
  std::copy(std::begin(tried.xSensArr), std::end(tried.xSensArr), image.xSensArr);
  std::copy(std::begin(tried.ySensArr), std::end(tried.ySensArr), image.ySensArr);
  const TransferProgress progress = transfers(settingReports);
  noteTried(NerinAction::setSettingToDevice());
}

void LevelSettingView::keepEdit() {
  saveData();
  editState->take(editState->currSetProfile());
}

// Sends the working copy again: the mouse keeps the tried settings until the next write of the
// profile.
void LevelSettingView::cancelEdit() {
  editState->currFWProfile() = editState->selProfile();
  const TransferProgress progress = transfers(settingReports);
  tellCancelled(NerinAction::setSettingToDevice());
}
