// The part of the LED window that picks a color: the field, the brightness, the bar, the numbers
// and the recent colors.

#include <QImage>
#include <QKeyEvent>
#include <algorithm>
#include <cmath>

#include "ArtworkFrames.h"
#include "Kit/Widgets/LXImageView.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Lights/LightView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"

namespace {

using frames = Artwork::LightOptionView;

// Where to sample the color bar's picture, from the bottom left.
constexpr int barColumn = 20;
constexpr int barTop = 265;

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

double distance(const LightColor& one, const LightColor& other) {
  return std::abs(one.red - other.red) + std::abs(one.green - other.green) +
         std::abs(one.blue - other.blue);
}

QRect inside(const Artwork::Frame& frame, const Artwork::Frame& parent) {
  return frameRect(frame).translated(-parent.x, -parent.y);
}

// Gives a control its place, the name that tests and style sheets know, and the name that a screen
// reader says.
void place(QWidget& control, const Artwork::Frame& frame, const char* name, const char* textKey) {
  control.setGeometry(frameRect(frame));
  control.setObjectName(QLatin1String(name));
  control.setAccessibleName(NerinAction::tooltipText(textKey));
}

}  // namespace

void LightView::initPicker() {
  m_colorField = new HueSaturationView(this);
  place(*m_colorField, frames::colorFieldView, "colorFieldView", "Hue and saturation");
  m_brightness = new BrightnessView(this);
  place(*m_brightness, frames::brightnessView, "brightnessView", "Brightness");
  connect(m_colorField, &HueSaturationView::picked, this, &LightView::takePicked);
  connect(m_brightness, &BrightnessView::picked, this, &LightView::takePicked);

  m_colorBarView = NerinAction::AddProBar(
      frameRect(frames::colorBarView), [this](LXProgressBar& sender) { progessBarAction(sender); },
      *this, pictures::load(QStringLiteral("ColorKnob.png")), barTop, 0);
  m_barColors = barColorsOf(pictures::load(QStringLiteral("ColorBar.png")).pixmap());
  m_colorBarView->setTag(TagColorBar);
  m_colorBarView->setTellsEveryChoice(true);
  m_colorBarView->setObjectName(QStringLiteral("colorBarView"));
  m_colorBarView->setAccessibleName(NerinAction::tooltipText("Color bar"));

  m_beforeColorView = new LXColorView(this);
  place(*m_beforeColorView, frames::beforeColorView, "beforeColorView", "Before");
  m_afterColorView = new LXColorView(this);
  place(*m_afterColorView, frames::afterColorView, "afterColorView", "After");

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
  place(*m_recentColors, frames::recentColorsView, "recentColorsView", "Recent colors");
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
