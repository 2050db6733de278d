// The LED window: its zones, what a change of color does, and the three ends.

#include "View/Lights/LightView.h"

#include <QPainter>
#include <algorithm>

#include "Action/Device/DeviceSettings.h"
#include "Action/Record/EditState.h"
#include "ArtworkFrames.h"
#include "Kit/Widgets/LXImageView.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/StatusLine.h"

namespace {

using frames = Artwork::LightOptionView;

constexpr int zones = static_cast<int>(zoneCount);
// The three parts of each zone's color, and the end.
constexpr int colorReports = 3 * zones + 1;
constexpr int wellInset = 4;
constexpr double wellRadius = 5;

std::string beforeKey(int index) {
  return "bColor" + std::to_string(index);
}

std::string afterKey(int index) {
  return "aColor" + std::to_string(index);
}

}  // namespace

LightView::LightView() : ChildView({frames::screenWidth, frames::screenHeight}) {}

void LightView::initData() {
  setImageByName(QStringLiteral("LightOptionView_Normal.png"));
  m_lights.emplace(frameRect(frames::stageView).topLeft());
}

void LightView::initControls() {
  initZones();
  initPicker();
  initCopies();
  addEndButtons({frameRect(frames::applyBtn), TagApply}, {frameRect(frames::okBtn), TagOk},
                {frameRect(frames::cancelBtn), TagCancel});
}

void LightView::initZones() {
  struct Zone {
    Artwork::Frame button;
    const char* buttonName;
    Artwork::Frame marker;
    const char* markerName;
    const char* lineName;
    const char* nameKey;
  };
  constexpr std::array<Zone, zoneCount> all{{
      {frames::midLightBtn, "midLightBtn", frames::midLightTagBtn, "midLightTagBtn", "midImgView",
       "Wheel"},
      {frames::reProfileLightBtn, "reProfileLightBtn", frames::reProfileLightTagBtn,
       "reProfileLightTagBtn", "reProfileImgView", "Profile light"},
      {frames::logoLightBtn, "logoLightBtn", frames::logoLightTagBtn, "logoLightTagBtn",
       "logoImgView", "Logo"},
      {frames::leftLightBtn, "leftLightBtn", frames::leftLightTagBtn, "leftLightTagBtn",
       "leftImgView", "Left side"},
  }};
  m_lightSetp = new LXSetpPanelObj(this);
  m_lightTagSetp = new LXSetpPanelObj(this);
  const auto none = [](LXButton&) {};
  for (std::size_t i = 0; i < zoneCount; ++i) {
    const Zone& zone = all[i];
    const int number = static_cast<int>(i);
    auto* line = new LXImageView(this);
    line->setGeometry(0, 0, frames::screenWidth, frames::screenHeight);
    line->setObjectName(QString::fromLatin1(zone.lineName));
    m_lines[i] = line;

    const QRect well = frameRect(zone.button);
    m_btnColorRect[i] = well.adjusted(wellInset, wellInset, -wellInset, -wellInset);
    LXButton* button = NerinAction::AddButton(well, none, {}, *this);
    clearBtnImage(*button);
    button->setBtnTag(FirstZoneTag + number);
    NerinAction::initTooltip(*button, QString::fromLatin1(zone.buttonName), "Color adjustmen");
    button->setAccessibleName(NerinAction::tooltipText(zone.nameKey));
    button->setLXBtnDelege(this);
    m_zoneBtns[i] = button;
    m_lightSetp->addItem(button);

    LXButton* marker = NerinAction::AddButton(frameRect(zone.marker), none, {}, *this);
    marker->setBtnTag(FirstMarkerTag + number);
    NerinAction::initTooltip(*marker, QString::fromLatin1(zone.markerName), "Color adjustmen");
    marker->setAccessibleName(NerinAction::tooltipText(zone.nameKey));
    marker->setLXBtnDelege(this);
    m_markerBtns[i] = marker;
    m_lightTagSetp->addItem(marker);
  }
  m_lightSetp->setSetpDelegate(this);
  m_lightTagSetp->setSetpDelegate(this);
}

void LightView::clearBtnImage(LXButton& button) {
  button.setImages({});
}

LightColor LightView::getColorPro(const _LightColorInfo& color) {
  return LightColor::ofBytes(color.cR, color.cG, color.cB);
}

void LightView::setColorPro(int index, const LightColor& color) {
  if (index < 0 || index >= zones) {
    return;
  }
  const auto [red, green, blue] = color.bytes();
  editState->currSetProfile().lightColorArr[index] = {red, green, blue};
}

void LightView::fillSettingData() {
  editState->currSetProfile() = editState->selProfile();
  displayBtnColor();
  m_isOverFill = true;
  for (int i = 0; i < zones; ++i) {
    m_historyColorDir[beforeKey(i)] = {};
    m_historyColorDir[afterKey(i)] = getColorPro(editState->currSetProfile().lightColorArr[i]);
  }
  displayBAColor();
}

// Only what has the colors of the lights.
void LightView::displayBtnColor() {
  for (std::size_t i = 0; i < zoneCount; ++i) {
    update(m_lights->place(i));
    update(m_btnColorRect[i]);
  }
}

void LightView::setSwatches(const LightColor& before, const LightColor& after) {
  m_before = before;
  m_after = after;
  m_beforeColorView->setColor(m_before.shown());
  m_afterColorView->setColor(m_after.shown());
}

void LightView::displayBAColor() {
  if (m_currSelectedIndex < 1 || m_currSelectedIndex > zones) {
    return;
  }
  const int index = m_currSelectedIndex - 1;
  setSwatches(m_historyColorDir[beforeKey(index)], m_historyColorDir[afterKey(index)]);
  // The picker starts with the zone's color.
  showPicked(getColorPro(editState->currSetProfile().lightColorArr[index]));
}

void LightView::onChangeColorPro(const LightColor& color) {
  if (!m_isOverFill) {
    return;
  }
  const LightColor before = m_pressedAt.value_or(m_after);
  if (m_currSelectedIndex > 0) {
    noteHistory(m_currSelectedIndex, before, color);
    const auto index = static_cast<std::size_t>(m_currSelectedIndex - 1);
    if (currentColors()[index].bytes() != color.bytes() && !(m_pressedAt && m_isPressNoted)) {
      noteStep();
      m_isPressNoted = true;
    }
  }
  setSwatches(before, color);
  setColorPro(m_currSelectedIndex - 1, color);
  displayBtnColor();
}

void LightView::noteHistory(int zone, const LightColor& before, const LightColor& after) {
  if (zone < zones) {
    m_historyColorDir[beforeKey(zone - 1)] = before;
    m_historyColorDir[afterKey(zone - 1)] = after;
  }
}

const LightColor& LightView::historyAfter(int zone) {
  return m_historyColorDir[afterKey(zone - 1)];
}

void LightView::onSelectIndex(int newIndex, int /*oldIndex*/, LXSetpPanelObj& sender) {
  // Reset the other panel, so that it can select the same zone again.
  (&sender == m_lightSetp ? m_lightTagSetp : m_lightSetp)->resetSetp();
  if (newIndex == m_currSelectedIndex) {
    return;
  }
  setLineImage(m_currSelectedIndex, false);
  setLineImage(newIndex, true);
  m_currSelectedIndex = newIndex;
  displayBAColor();
}

void LightView::setLineImage(int zone, bool showTag) {
  if (zone < 1 || zone > zones) {
    return;
  }
  const auto index = static_cast<std::size_t>(zone - 1);
  // Also lights the marker at the end of the line.
  showTag ? m_markerBtns[index]->setOverImagePro() : m_markerBtns[index]->setExitImagePro();
  m_lines[index]->setImage(
      showTag ? pictures::load(QStringLiteral("LightOptionView_Line%1.png").arg(zone)) : LXImage());
}

void LightView::onMouseEvent(LXButton& button, QEvent& /*event*/, int type) {
  if (type == Entered) {
    setLightSelImage(button, true);
  } else if (type == Left) {
    setLightSelImage(button, false);
  }
}

void LightView::setLightSelImage(LXButton& button, bool showTag) {
  const int tag = button.btnTag();
  m_currShowIndex = 0;
  if (tag >= FirstZoneTag && tag < FirstZoneTag + zones) {
    m_currShowIndex = tag - FirstZoneTag + 1;
  } else if (tag >= FirstMarkerTag && tag < FirstMarkerTag + zones) {
    m_currShowIndex = tag - FirstMarkerTag + 1;
  }
  if (m_currShowIndex != m_currSelectedIndex) {
    setLineImage(m_currShowIndex, showTag);
  }
}

void LightView::buttonAction(LXButton& sender) {
  m_colorPanel->commit();
  ChildView::buttonAction(sender);
}

std::optional<_Nerin_PROFILE> LightView::workingProfile() {
  return editState->currSetProfile();
}

void LightView::rememberColors() const {
  for (int i = zones - 1; i >= 0; --i) {
    const LightColor color = getColorPro(editState->currSetProfile().lightColorArr[i]);
    if (color != getColorPro(editState->selProfile().lightColorArr[i])) {
      RecentColorsView::remember(color);
    }
  }
}

void LightView::applyEdit() {
  rememberColors();
  m_recentColors->refresh();
  const TransferProgress progress = transfers(colorReports);
  const Outcome outcome = NerinAction::setColorToDevice2();
  m_lightSetp->resetSetp();
  m_lightTagSetp->resetSetp();
  setLineImage(m_currSelectedIndex, false);
  m_currSelectedIndex = 0;
  statusline::tell(outcome);
}

// Sends nothing: the mouse gets the whole profile when the user applies it.
void LightView::keepEdit() {
  rememberColors();
  editState->edit() = editState->currSetProfile();
  m_isOverFill = false;
}

void LightView::cancelEdit() {
  m_isOverFill = false;
  editState->currSetProfile() = editState->selProfile();
  const TransferProgress progress = transfers(colorReports);
  statusline::tell(NerinAction::setColorToDevice2());
}

void LightView::paintEvent(QPaintEvent* event) {
  ChildView::paintEvent(event);
  QPainter painter(this);
  TintedLights::Colors colors;
  std::ranges::transform(currentColors(), colors.begin(), &LightColor::shown);
  m_lights->draw(painter, colors);
  drawColorBtn(painter);
}

void LightView::drawColorBtn(QPainter& painter) const {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  for (int i = 0; i < zones; ++i) {
    painter.setBrush(getColorPro(editState->currSetProfile().lightColorArr[i]).shown());
    painter.drawRoundedRect(m_btnColorRect[static_cast<std::size_t>(i)], wellRadius, wellRadius);
  }
}
