#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Action/Record/Records.h"
#include "Kit/Core/UndoSteps.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "View/Lights/ColorPicker.h"
#include "View/Lights/LightColor.h"
#include "View/Lights/TintedLights.h"
#include "View/Windows/ChildView.h"

class LXColorView;
class LXImageView;
class LXProgressBar;
class QMenu;

// The colors of the mouse's four zones. A change shows here at once; Apply sends it to the mouse,
// OK keeps it in the edited profile, Cancel restores the profile's colors on the mouse.
class LightView : public ChildView, public LXSetpPanelDelegate, public LXButtonDelegate {
  Q_OBJECT

 public:
  enum Tag : int {
    FirstZoneTag = 230,
    TagApply = 234,
    TagCancel = 235,
    TagOk = 236,
    FirstMarkerTag = 240,
    TagColorBar = 242,
  };

  LightView();
  std::string helpChapter() const override { return "led"; }

  void fillSettingData() override;
  std::optional<_Nerin_PROFILE> workingProfile() override;
  void buttonAction(LXButton& sender) override;
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  void onMouseEvent(LXButton& button, QEvent& event, int type) override;
  void setLightSelImage(LXButton& button, bool showTag);
  // Shows or hides the line of a zone, 1..4.
  void setLineImage(int zone, bool showTag);

  // Shows the swatches of the selected zone.
  void displayBAColor();
  void displayBtnColor();
  static LightColor getColorPro(const _LightColorInfo& color);
  // Stores a color for a zone index, 0..3; any other index is ignored.
  static void setColorPro(int index, const LightColor& color);
  // Takes the chosen color.
  void onChangeColorPro(const LightColor& color);
  void OnColorChange(QObject* sender, const LightColor& color);
  void progessBarAction(LXProgressBar& sender);
  static void clearBtnImage(LXButton& button);

  // 1..4; 0 for no zone.
  int currSelectedIndex() const { return m_currSelectedIndex; }
  int currShowIndex() const { return m_currShowIndex; }
  bool isOverFill() const { return m_isOverFill; }
  const std::map<std::string, LightColor>& historyColorDir() const { return m_historyColorDir; }
  const LightColor& beforeColor() const { return m_before; }
  const LightColor& afterColor() const { return m_after; }
  ColorPanel& colorPanel() { return *m_colorPanel; }

 protected:
  void initData() override;
  void initControls() override;
  void paintEvent(QPaintEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void applyEdit() override;
  void keepEdit() override;
  void cancelEdit() override;

 private:
  using Colors = std::array<LightColor, zoneCount>;

  void initCopies();
  void addCopyActions(LXButton& button, int zone);
  void showLightMenu(LXButton& button, const QPoint& place);
  // The zone of a button or a marker, 1..4; 0 for any other widget.
  int zoneOf(const QWidget* widget) const;
  void selectZone(int zone);
  static Colors currentColors();
  // These take a zone, 1..4; 0 asks the user to choose one.
  void copyColor(int zone);
  void pasteColor(int zone);
  void useForAllLights(int zone);
  void copyAllLights();
  // Call before the colors change.
  void noteStep();
  // Changes what differs, with the history of those zones, and shows it.
  void takeColors(const Colors& colors);
  void undoColors();
  void redoColors();
  void finishStep();
  // Takes the colors and says which lights have changed.
  void showStep(const Colors& after, const char* text);
  // The last zone keeps its original history.
  void noteHistory(int zone, const LightColor& before, const LightColor& after);
  const LightColor& historyAfter(int zone);
  void beginPress();

  void initZones();
  void initPicker();
  void drawColorBtn(QPainter& painter) const;
  void takePicked();
  void showInSliders();
  void showPicked(const LightColor& color);
  // The place of the color on the bar, or else of its hue; a gray has the nearer end.
  int barPlaceOf(const LightColor& color) const;
  void setSwatches(const LightColor& before, const LightColor& after);
  void rememberColors() const;

  std::array<LXButton*, zoneCount> m_zoneBtns{};
  std::array<LXButton*, zoneCount> m_markerBtns{};
  std::array<LXImageView*, zoneCount> m_lines{};
  std::array<QRect, zoneCount> m_btnColorRect{};
  std::optional<TintedLights> m_lights;
  LXSetpPanelObj* m_lightSetp = nullptr;
  LXSetpPanelObj* m_lightTagSetp = nullptr;
  LXColorView* m_beforeColorView = nullptr;
  LXColorView* m_afterColorView = nullptr;
  HueSaturationView* m_colorField = nullptr;
  BrightnessView* m_brightness = nullptr;
  ColorPanel* m_colorPanel = nullptr;
  RecentColorsView* m_recentColors = nullptr;
  LXProgressBar* m_colorBarView = nullptr;
  // The color bar from left to right.
  std::vector<LightColor> m_barColors;
  PickedColor m_picked;
  std::map<std::string, LightColor> m_historyColorDir;
  // The color at the press of a drag or of a held key, which are one change together.
  std::optional<LightColor> m_pressedAt;
  bool m_isPressNoted = false;
  UndoSteps<Colors> m_steps;
  QMenu* m_lightMenu = nullptr;
  LightColor m_before;
  LightColor m_after;
  int m_currSelectedIndex = 0;
  int m_currShowIndex = 0;
  bool m_isOverFill = false;
};
