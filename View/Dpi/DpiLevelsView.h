#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "Action/Record/Outcome.h"
#include "Action/Record/Records.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "View/Dpi/DpiSliderView.h"
#include "View/Dpi/LevelView.h"
#include "View/Screen/Frames.h"
#include "View/Windows/ChildView.h"

// The editor of the DPI levels, which two windows share: five levels with one value each, five with
// a value per axis, a check box to switch between them, and the slider of the active level. Edits
// currSetProfile; closing the window copies it to selProfile.
class DpiLevelsView : public ChildView,
                      public LXSetpPanelDelegate,
                      public DpiSliderDelegate,
                      public LevelViewDelegate {
  Q_OBJECT

 public:
  void fillSettingData() override;
  std::optional<_Nerin_PROFILE> workingProfile() override;
  std::string helpChapter() const override { return "dpi"; }
  // Marks a level, 0..4, of the visible set.
  void setSelectedDpi(std::uint32_t level);
  // Sets the number of levels in use. Numbers outside 1..5 do not change the screen.
  void setCurrLevlePro(std::uint32_t count, bool isXY);
  // Checks the box if one of the first `count` levels has two values.
  void fillXYChk(std::uint32_t count);
  // Copy a level, 0..4, to the slider, and the slider to the level's record.
  void fillDPiData(std::uint32_t level);
  void saveDPiData(std::uint32_t level);
  // Copies all levels to the record.
  void saveDpiDataPro();
  // Copies the slider to the active level.
  void fillLevelViewData();

  void onLevelChange(LevelView& level) override;
  void onDpiChange(LevelView& level, int type) override;
  void OnChangeSliderValue(DpiSliderView& sender) override;
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  // For sliders other than those of the levels.
  virtual void progessBarAction(LXProgressBar& sender) = 0;

  std::uint32_t currLevel() const { return m_currLevel; }
  bool isXY() const;

 protected:
  // The reports of all levels and the lift height.
  static constexpr int settingReports = 14;

  struct Places {
    std::array<QRect, levelCount> levels;
    QRect slider;
    QRect enableXYChk;
    int enableXYTag;
  };

  // The frames of the shared controls in the artwork of a screen.
  template <typename Frames>
  static Places placesIn(int enableXYTag) {
    return {{frameRect(Frames::level1), frameRect(Frames::level2), frameRect(Frames::level3),
             frameRect(Frames::level4), frameRect(Frames::level5)},
            frameRect(Frames::sliderView),
            frameRect(Frames::enableXYChk),
            enableXYTag};
  }

  DpiLevelsView(const QSize& frame, const char* picture, const Places& places);

  void initData() override;
  void initControls() override;
  // Commits typed values first, and switches the sets if the box was clicked.
  void buttonAction(LXButton& sender) override;
  void enableXYAction();
  // Call after Apply has tried the settings on the mouse, with how that went.
  void noteTried(const Outcome& outcome);
  // Call after Cancel has sent the working copy again. If the mouse keeps other settings than the
  // profile's own, this says so, and the profile is to be applied.
  void tellCancelled(const Outcome& outcome);

 private:
  using Levels = std::array<LevelView*, levelCount>;

  Levels& shownLevels();
  Levels& hiddenLevels();
  // Commits typed values in all levels except one.
  void commitLevels(const LevelView* except = nullptr);
  void setLevelsVisible(Levels& levels, std::size_t count);

  const char* m_picture;
  Places m_places;
  Levels m_levelViewArrs{};
  Levels m_levelXYViewArrs{};
  // For the keyboard. They lie over the levels and ignore the pointer.
  std::array<LXButton*, levelCount> m_levelBtns{};
  LXSetpPanelObj* m_bgViewSetp = nullptr;
  DpiSliderView* m_dpiSliderView = nullptr;
  LXButton* m_enableXYChk = nullptr;
  std::uint32_t m_currLevel = 1;
  bool m_hasTried = false;
};
