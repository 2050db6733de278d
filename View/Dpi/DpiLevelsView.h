#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "Action/Record/Records.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "View/Dpi/DpiSliderView.h"
#include "View/Dpi/LevelView.h"
#include "View/Screen/Frames.h"
#include "View/Windows/ChildView.h"

// The editor of the DPI levels, which two windows share: five levels with one value each, five with
// a value for each axis, a check box that chooses between them, and the slider of the active level.
// Edits the working copy, currSetProfile; selProfile takes it over when the window is closed.
class DpiLevelsView : public ChildView,
                      public LXSetpPanelDelegate,
                      public DpiSliderDelegate,
                      public LevelViewDelegate {
  Q_OBJECT

 public:
  void fillSettingData() override;
  // Marks a level, 0..4, of the set that is shown.
  void setSelectedDpi(std::uint32_t level);
  // How many levels are in use, 1..5 or nothing changes on the screen.
  void setCurrLevlePro(std::uint32_t count, bool isXY);
  // Checks the box when one of the first `count` levels has two values.
  void fillXYChk(std::uint32_t count);
  // From a level, 0..4, to the slider; and from the slider into the level's record.
  void fillDPiData(std::uint32_t level);
  void saveDPiData(std::uint32_t level);
  // All levels into the record.
  void saveDpiDataPro();
  // From the slider to the active level.
  void fillLevelViewData();

  void onLevelChange(LevelView& level) override;
  void onDpiChange(LevelView& level, int type) override;
  void OnChangeSliderValue(DpiSliderView& sender) override;
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  // A slider that is not one of the levels'.
  virtual void progessBarAction(LXProgressBar& sender) = 0;

  // The number of levels in use.
  std::uint32_t currLevel() const { return m_currLevel; }
  bool isXY() const;

 protected:
  struct Places {
    std::array<QRect, levelCount> levels;
    QRect slider;
    QRect enableXYChk;
    int enableXYTag;
  };

  // Where the shared controls stand in the artwork of a screen.
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
  // What was typed and not committed counts, and the box toggles when it was the box.
  void buttonAction(LXButton& sender) override;
  // The box was clicked.
  void enableXYAction();

 private:
  using Levels = std::array<LevelView*, levelCount>;

  Levels& shownLevels();
  Levels& hiddenLevels();
  // What was typed and not committed; of all levels but one.
  void commitLevels(const LevelView* except = nullptr);
  void setLevelsVisible(Levels& levels, std::size_t count);

  const char* m_picture;
  Places m_places;
  Levels m_levelViewArrs{};
  Levels m_levelXYViewArrs{};
  // What the keyboard moves through: they lie over the levels and let the pointer through.
  std::array<LXButton*, levelCount> m_levelBtns{};
  LXSetpPanelObj* m_bgViewSetp = nullptr;
  DpiSliderView* m_dpiSliderView = nullptr;
  LXButton* m_enableXYChk = nullptr;
  std::uint32_t m_currLevel = 1;
};
