#include "View/Lights/LightView.h"

#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>
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
// Where to sample the color bar's picture, from the bottom left.
constexpr int barColumn = 20;
constexpr int barTop = 265;

std::string beforeKey(int index) {
  return "bColor" + std::to_string(index);
}

std::string afterKey(int index) {
  return "aColor" + std::to_string(index);
}

// The colors of the bar's picture, from the left end of the bar to its right end. Picture rows
// count from the top.
std::vector<LightColor> barColorsOf(const QPixmap& picture) {
  const qreal ratio = picture.devicePixelRatio();
  const QImage bar = picture.toImage();
  std::vector<LightColor> colors;
  colors.reserve(barTop + 1);
  for (int value = 0; value <= barTop; ++value) {
    const int fromBottom = barTop - value;
    const int row = static_cast<int>(bar.height() / ratio) - 1 - fromBottom;
    const QPoint point(static_cast<int>(barColumn * ratio), static_cast<int>(row * ratio));
    if (!bar.rect().contains(point)) {
      break;
    }
    colors.push_back(LightColor::of(bar.pixelColor(point)));
  }
  return colors;
}

// The part of the picture that is not transparent, in device-independent pixels.
QRect litPartOf(const QPixmap& picture) {
  const QImage image = picture.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
  QRect lit;
  for (int y = 0; y < image.height(); ++y) {
    int first = 0;
    int last = image.width() - 1;
    while (first <= last && qAlpha(image.pixel(first, y)) == 0) {
      ++first;
    }
    while (last > first && qAlpha(image.pixel(last, y)) == 0) {
      --last;
    }
    if (first <= last) {
      lit |= QRect(QPoint(first, y), QPoint(last, y));
    }
  }
  if (lit.isEmpty()) {
    return {};
  }
  // At every quarter of a scale, a multiple of four lies between two pixels.
  constexpr int step = 4;
  const qreal size = step * picture.devicePixelRatio();
  const auto floor = [size](int pixel) { return qFloor(pixel / size) * step; };
  const auto ceil = [size](int pixel) { return qCeil(pixel / size) * step; };
  const QPoint first(floor(lit.left()), floor(lit.top()));
  return {first, QSize(ceil(lit.right() + 1) - first.x(), ceil(lit.bottom() + 1) - first.y())};
}

double distance(const LightColor& one, const LightColor& other) {
  return std::abs(one.red - other.red) + std::abs(one.green - other.green) +
         std::abs(one.blue - other.blue);
}

LXImage tinted(const LXImage& light, const QColor& color) {
  return LXImage([light, color](qreal ratio) {
    QPixmap picture = light.pixmap(ratio);
    QPainter tint(&picture);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(picture.rect(), color);
    tint.end();
    return LXImage::Loaded{picture, light.size()};
  });
}

QRect inside(const Artwork::Frame& frame, const Artwork::Frame& parent) {
  return frameRect(frame).translated(-parent.x, -parent.y);
}

}  // namespace

LightView::LightView() : ChildView({frames::screenWidth, frames::screenHeight}) {}

void LightView::initData() {
  setImageByName(QStringLiteral("LightOptionView_Normal.png"));
  for (int zone = 1; zone <= zones; ++zone) {
    const auto index = static_cast<std::size_t>(zone - 1);
    const QString name = QStringLiteral("LightZone%1.png").arg(zone);
    const QRect lit = litPartOf(pictures::load(name).pixmap());
    m_lights[index] = pictures::load(name).slice(lit);
    m_lightPlaces[index] = lit.translated(frameRect(frames::stageView).topLeft());
  }
  m_barColors = barColorsOf(pictures::load(QStringLiteral("ColorBar.png")).pixmap());
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

void LightView::initPicker() {
  m_colorField = new HueSaturationView(this);
  m_colorField->setGeometry(frameRect(frames::colorFieldView));
  m_colorField->setObjectName(QStringLiteral("colorFieldView"));
  m_colorField->setAccessibleName(NerinAction::tooltipText("Hue and saturation"));
  m_brightness = new BrightnessView(this);
  m_brightness->setGeometry(frameRect(frames::brightnessView));
  m_brightness->setObjectName(QStringLiteral("brightnessView"));
  m_brightness->setAccessibleName(NerinAction::tooltipText("Brightness"));
  connect(m_colorField, &HueSaturationView::picked, this, &LightView::takePicked);
  connect(m_brightness, &BrightnessView::picked, this, &LightView::takePicked);

  m_colorBarView = NerinAction::AddProBar(
      frameRect(frames::colorBarView), [this](LXProgressBar& sender) { progessBarAction(sender); },
      *this, pictures::load(QStringLiteral("ColorKnob.png")), barTop, 0);
  m_colorBarView->setTag(TagColorBar);
  m_colorBarView->setTellsEveryChoice(true);
  m_colorBarView->setObjectName(QStringLiteral("colorBarView"));
  m_colorBarView->setAccessibleName(NerinAction::tooltipText("Color bar"));

  m_beforeColorView = new LXColorView(this);
  m_beforeColorView->setGeometry(frameRect(frames::beforeColorView));
  m_beforeColorView->setObjectName(QStringLiteral("beforeColorView"));
  m_beforeColorView->setAccessibleName(NerinAction::tooltipText("Before"));
  m_afterColorView = new LXColorView(this);
  m_afterColorView->setGeometry(frameRect(frames::afterColorView));
  m_afterColorView->setObjectName(QStringLiteral("afterColorView"));
  m_afterColorView->setAccessibleName(NerinAction::tooltipText("After"));

  const Artwork::Frame& panel = frames::colorPanel;
  m_colorPanel = new ColorPanel(frameRect(panel).size(),
                                {inside(frames::redTxt, panel), inside(frames::greenTxt, panel),
                                 inside(frames::blueTxt, panel), inside(frames::hexTxt, panel)},
                                this);
  m_colorPanel->move(panel.x, panel.y);
  m_colorPanel->setObjectName(QStringLiteral("colorPanel"));
  m_colorPanel->construct();
  connect(m_colorPanel, &ColorPanel::selColorChanged, this,
          [this] { OnColorChange(m_colorPanel, m_colorPanel->selColor()); });

  m_recentColors = new RecentColorsView(this);
  m_recentColors->setGeometry(frameRect(frames::recentColorsView));
  m_recentColors->setObjectName(QStringLiteral("recentColorsView"));
  m_recentColors->setAccessibleName(NerinAction::tooltipText("Recent colors"));
  connect(m_recentColors, &RecentColorsView::chosen, this,
          [this](const QColor& color) { m_colorPanel->setSelColor(LightColor::of(color)); });

  for (QObject* picker : {static_cast<QObject*>(m_colorField), static_cast<QObject*>(m_brightness),
                          static_cast<QObject*>(m_colorBarView)}) {
    picker->installEventFilter(this);
  }
  for (LXTextField* field : m_colorPanel->findChildren<LXTextField*>()) {
    field->installEventFilter(this);
  }
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
    update(m_lightPlaces[i]);
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

void LightView::showPicked(const LightColor& color) {
  m_picked.setColor(color);
  showInSliders();
  m_colorPanel->showColor(color);
}

void LightView::showInSliders() {
  m_colorField->show(m_picked);
  m_brightness->show(m_picked);
  m_colorBarView->setValue(barPlaceOf(m_picked.color()));
}

void LightView::takePicked() {
  m_picked.hue = m_colorField->hue();
  m_picked.saturation = m_colorField->saturation();
  m_picked.brightness = m_brightness->brightness();
  // Any hue of black is black, so picking a hue sets full brightness.
  if (sender() == m_colorField && m_picked.brightness == 0) {
    m_picked.brightness = 1;
  }
  showInSliders();
  m_colorPanel->showColor(m_picked.color());
  onChangeColorPro(m_picked.color());
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

void LightView::OnColorChange(QObject* /*sender*/, const LightColor& color) {
  m_picked.setColor(color);
  showInSliders();
  onChangeColorPro(color);
}

void LightView::progessBarAction(LXProgressBar& sender) {
  if (sender.tag() != TagColorBar) {
    return;
  }
  const auto place = static_cast<std::size_t>(sender.value());
  if (place < m_barColors.size()) {
    m_colorPanel->setSelColor(m_barColors[place]);
  }
}

int LightView::barPlaceOf(const LightColor& color) const {
  // About one step of a byte in each part.
  constexpr double same = 0.012;
  const auto nearest = [this](const LightColor& wanted) {
    return std::min_element(m_barColors.begin(), m_barColors.end(),
                            [&](const LightColor& one, const LightColor& other) {
                              return distance(one, wanted) < distance(other, wanted);
                            });
  };
  const auto standing = static_cast<std::size_t>(m_colorBarView->value());
  if (standing < m_barColors.size() && distance(m_barColors[standing], color) < same) {
    return m_colorBarView->value();
  }
  auto place = nearest(color);
  if (place != m_barColors.end() && distance(*place, color) >= same) {
    const bool hasHue = m_picked.saturation > 0 && m_picked.brightness > 0;
    const double gray = m_picked.brightness < 0.5 ? 0 : 1;
    place =
        nearest(hasHue ? PickedColor{m_picked.hue, 1, 1}.color() : LightColor{gray, gray, gray});
  }
  return static_cast<int>(place - m_barColors.begin());
}

void LightView::beginPress() {
  m_pressedAt = m_after;
  m_isPressNoted = false;
}

// A drag or a held key is one change, whose "before" is the color at the press.
bool LightView::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
      beginPress();
      break;
    case QEvent::KeyPress:
      if (!static_cast<QKeyEvent*>(event)->isAutoRepeat()) {
        beginPress();
      }
      break;
    case QEvent::KeyRelease:
      if (!static_cast<QKeyEvent*>(event)->isAutoRepeat()) {
        m_pressedAt.reset();
      }
      break;
    case QEvent::MouseButtonRelease:
    case QEvent::FocusOut:
      m_pressedAt.reset();
      break;
    default:
      break;
  }
  return ChildView::eventFilter(watched, event);
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
  drawLights(painter);
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

// Draws the lights in their colors. Each picture has only the light, in white on transparent.
// Tinting takes longer than all the rest, and every control that lies on this view draws it too.
void LightView::drawLights(QPainter& painter) {
  const Colors colors = currentColors();
  for (std::size_t i = 0; i < zoneCount; ++i) {
    if (m_lights[i].isNull()) {
      continue;
    }
    if (const QColor color = colors[i].shown(); m_tinted[i].isNull() || m_tints[i] != color) {
      m_tints[i] = color;
      m_tinted[i] = tinted(m_lights[i], color);
    }
    m_tinted[i].draw(painter, m_lightPlaces[i].topLeft());
  }
}
