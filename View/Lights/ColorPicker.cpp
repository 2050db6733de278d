#include "View/Lights/ColorPicker.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpressionValidator>
#include <algorithm>
#include <cmath>

#include "ArtworkFrames.h"
#include "Kit/Core/ProcessWide.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "View/Screen/ControlFactory.h"

namespace {

constexpr double keyStep = 0.01;
constexpr double cornerRadius = 6;
constexpr double knobRadius = 6;
constexpr double knobEdge = 4;
constexpr double knobReach = knobRadius + knobEdge / 2;
constexpr int swatchSize = 24;
constexpr int swatchPitch = 29;
constexpr int highest = 255;
constexpr int hexDigits = 7;

QColor colorOfHsv(double hue, double saturation, double brightness) {
  return QColor::fromHsvF(static_cast<float>(std::clamp(hue, 0.0, 1.0)),
                          static_cast<float>(std::clamp(saturation, 0.0, 1.0)),
                          static_cast<float>(std::clamp(brightness, 0.0, 1.0)));
}

void drawKnob(QPainter& painter, const QPointF& center, bool hasFocus) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::black, knobEdge));
  painter.drawEllipse(center, knobRadius, knobRadius);
  painter.setPen(QPen(Qt::white, hasFocus ? 3 : 2));
  painter.drawEllipse(center, knobRadius, knobRadius);
}

// A color that the user can choose with a click, Space or Return.
class Swatch : public QAbstractButton {
 public:
  explicit Swatch(QWidget* parent) : QAbstractButton(parent) {}

  void setColor(const QColor& color) {
    m_color = color;
    setToolTip(color.name().toUpper());
    setAccessibleName(color.name().toUpper());
    update();
  }
  QColor color() const { return m_color; }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
      if (!event->isAutoRepeat()) {
        click();
      }
      return;
    }
    QAbstractButton::keyPressEvent(event);
  }
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(m_color);
    const bool isLit = hasFocus() || underMouse();
    painter.setPen(
        QPen(isLit ? QColor(Qt::white) : QColor::fromRgb(Artwork::Color::hairline), isLit ? 2 : 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
  }

 private:
  QColor m_color;
};

ProcessWide<std::vector<LightColor>> recentColors;

}  // namespace

// In each of the six sectors of the hues, one component falls or rises.
LightColor PickedColor::color() const {
  constexpr int sectors = 6;
  const double place = (hue - std::floor(hue)) * sectors;
  const int sector = static_cast<int>(place);
  const double along = place - sector;
  const double low = brightness * (1 - saturation);
  const double falling = brightness * (1 - saturation * along);
  const double rising = brightness * (1 - saturation * (1 - along));
  switch (sector) {
    case 0:
      return {brightness, rising, low};
    case 1:
      return {falling, brightness, low};
    case 2:
      return {low, brightness, rising};
    case 3:
      return {low, falling, brightness};
    case 4:
      return {rising, low, brightness};
    default:
      return {brightness, low, falling};
  }
}

void PickedColor::setColor(const LightColor& color) {
  const auto [least, most] = std::minmax({color.red, color.green, color.blue});
  const double range = most - least;
  brightness = most;
  if (most > 0) {
    saturation = range / most;
  }
  if (range <= 0) {
    return;
  }
  constexpr double sectors = 6;
  const double place = most == color.red     ? (color.green - color.blue) / range
                       : most == color.green ? 2 + (color.blue - color.red) / range
                                             : 4 + (color.red - color.green) / range;
  hue = (place < 0 ? place + sectors : place) / sectors;
}

PickView::PickView(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
}

void PickView::show(const PickedColor& color) {
  m_color = color;
  update();
}

void PickView::tellPicked() {
  update();
  emit picked();
}

void PickView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    pickAt(event->position());
  }
  event->accept();
}

void PickView::mouseMoveEvent(QMouseEvent* event) {
  if ((event->buttons() & Qt::LeftButton) != 0) {
    pickAt(event->position());
  }
}

void HueSaturationView::pick(double hue, double saturation) {
  m_color.hue = std::clamp(hue, 0.0, 1.0);
  m_color.saturation = std::clamp(saturation, 0.0, 1.0);
  tellPicked();
}

void HueSaturationView::pickAt(const QPointF& point) {
  pick(point.x() / (width() - 1), 1 - point.y() / (height() - 1));
}

void HueSaturationView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      pick(m_color.hue - keyStep, m_color.saturation);
      return;
    case Qt::Key_Right:
      pick(m_color.hue + keyStep, m_color.saturation);
      return;
    case Qt::Key_Up:
      pick(m_color.hue, m_color.saturation + keyStep);
      return;
    case Qt::Key_Down:
      pick(m_color.hue, m_color.saturation - keyStep);
      return;
    default:
      PickView::keyPressEvent(event);
  }
}

// The field never changes, and its gradients take longer than the knob.
void HueSaturationView::drawField() {
  m_field = QPixmap(size() * devicePixelRatioF());
  m_field.setDevicePixelRatio(devicePixelRatioF());
  m_field.fill(Qt::transparent);
  QPainter painter(&m_field);
  painter.setRenderHint(QPainter::Antialiasing);
  QLinearGradient hues(0, 0, width(), 0);
  constexpr int stops = 6;
  for (int i = 0; i <= stops; ++i) {
    const double at = static_cast<double>(i) / stops;
    hues.setColorAt(at, colorOfHsv(i == stops ? 0 : at, 1, 1));
  }
  QLinearGradient white(0, 0, 0, height());
  white.setColorAt(0, QColor(255, 255, 255, 0));
  white.setColorAt(1, Qt::white);
  painter.setPen(Qt::NoPen);
  painter.setBrush(hues);
  painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
  painter.setBrush(white);
  painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
}

void HueSaturationView::paintEvent(QPaintEvent* /*event*/) {
  if (m_field.size() != size() * devicePixelRatioF()) {
    drawField();
  }
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.drawPixmap(0, 0, m_field);
  drawKnob(painter,
           {std::clamp(m_color.hue * (width() - 1), knobReach, width() - knobReach),
            std::clamp((1 - m_color.saturation) * (height() - 1), knobReach, height() - knobReach)},
           hasFocus());
}

void BrightnessView::pick(double brightness) {
  m_color.brightness = std::clamp(brightness, 0.0, 1.0);
  tellPicked();
}

void BrightnessView::pickAt(const QPointF& point) {
  pick(point.x() / (width() - 1));
}

void BrightnessView::keyPressEvent(QKeyEvent* event) {
  const bool isMore = event->key() == Qt::Key_Right || event->key() == Qt::Key_Up;
  const bool isLess = event->key() == Qt::Key_Left || event->key() == Qt::Key_Down;
  if (isMore || isLess) {
    pick(m_color.brightness + (isMore ? keyStep : -keyStep));
  } else {
    PickView::keyPressEvent(event);
  }
}

void BrightnessView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QLinearGradient light(0, 0, width(), 0);
  light.setColorAt(0, Qt::black);
  light.setColorAt(1, colorOfHsv(m_color.hue, m_color.saturation, 1));
  painter.setPen(Qt::NoPen);
  painter.setBrush(light);
  painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
  drawKnob(painter,
           {std::clamp(m_color.brightness * (width() - 1), knobReach, width() - knobReach),
            height() / 2.0},
           hasFocus());
}

// All swatches are there from the beginning, so that they keep their place in the order of the Tab
// key.
RecentColorsView::RecentColorsView(QWidget* parent) : QWidget(parent) {
  for (int i = 0; i < static_cast<int>(most); ++i) {
    auto* swatch = new Swatch(this);
    swatch->setGeometry(i * swatchPitch, 0, swatchSize, swatchSize);
    swatch->installEventFilter(this);
    connect(swatch, &QAbstractButton::clicked, this,
            [this, swatch] { emit chosen(swatch->color()); });
    m_swatches[static_cast<std::size_t>(i)] = swatch;
  }
  refresh();
}

void RecentColorsView::remember(const LightColor& color) {
  auto& colors = (*recentColors);
  colors.erase(std::remove(colors.begin(), colors.end(), color), colors.end());
  colors.insert(colors.begin(), color);
  colors.resize(std::min(colors.size(), most));
}

void RecentColorsView::refresh() {
  const auto& colors = (*recentColors);
  for (std::size_t i = 0; i < most; ++i) {
    const bool isThere = i < colors.size();
    m_swatches[i]->setVisible(isThere);
    m_swatches[i]->setFocusPolicy(i == 0 ? Qt::StrongFocus : Qt::ClickFocus);
    if (isThere) {
      static_cast<Swatch*>(m_swatches[i])->setColor(colors[i].shown());
    }
  }
}

// The Tab key stops once, at the swatch that had the focus last; the arrow keys go to the others.
bool RecentColorsView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn) {
    for (QWidget* swatch : m_swatches) {
      swatch->setFocusPolicy(swatch == watched ? Qt::StrongFocus : Qt::ClickFocus);
    }
  } else if (event->type() == QEvent::KeyPress) {
    return moveFocus(watched, static_cast<QKeyEvent*>(event)->key());
  }
  return QWidget::eventFilter(watched, event);
}

bool RecentColorsView::moveFocus(const QObject* from, int key) {
  const auto found = std::find(m_swatches.begin(), m_swatches.end(), from);
  const auto count = static_cast<std::ptrdiff_t>((*recentColors).size());
  std::ptrdiff_t place = found - m_swatches.begin();
  switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Up:
      --place;
      break;
    case Qt::Key_Right:
    case Qt::Key_Down:
      ++place;
      break;
    case Qt::Key_Home:
      place = 0;
      break;
    case Qt::Key_End:
      place = count - 1;
      break;
    default:
      return false;
  }
  if (place >= 0 && place < count) {
    m_swatches[static_cast<std::size_t>(place)]->setFocus(Qt::TabFocusReason);
  }
  return true;
}

ColorPanel::ColorPanel(const QSize& frame, const Places& places, QWidget* parent)
    : TavImageView(frame, parent), m_places(places) {}

void ColorPanel::initControls() {
  struct Number {
    QRect frame;
    const char* name;
    const char* nameKey;
  };
  const std::array<Number, 3> numbers{{{m_places.red, "redTxt", "Red"},
                                       {m_places.green, "greenTxt", "Green"},
                                       {m_places.blue, "blueTxt", "Blue"}}};
  constexpr int digits = 3;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    m_numbers[i] = NerinAction::AddNumTextField(numbers[i].frame, *this, highest, 0, digits, false);
    m_numbers[i]->setObjectName(QString::fromLatin1(numbers[i].name));
    m_numbers[i]->setAccessibleName(NerinAction::tooltipText(numbers[i].nameKey));
    m_numbers[i]->setAlignment(Qt::AlignCenter);
    m_numbers[i]->setStep(1);
    m_numbers[i]->setKeepsNumber(true);
  }
  m_hexTxt = NerinAction::AddTextField(m_places.hex, *this);
  m_hexTxt->setObjectName(QStringLiteral("hexTxt"));
  m_hexTxt->setAccessibleName(NerinAction::tooltipText("Color code"));
  m_hexTxt->setAlignment(Qt::AlignCenter);
  m_hexTxt->setMaxLength(hexDigits);
  m_hexTxt->setValidator(new QRegularExpressionValidator(
      QRegularExpression(QStringLiteral("#?[0-9A-Fa-f]{0,6}")), m_hexTxt));
  m_hexTxt->setAction([this](LXTextField&) { takeHex(); });
  showColor(m_selColor);
}

void ColorPanel::showColor(const LightColor& color) {
  m_selColor = color;
  const auto bytes = color.bytes();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    m_numbers[i]->setValue(static_cast<int>(bytes[i]));
  }
  // The picture contains the "#".
  m_hexTxt->setText(color.shown().name().mid(1).toUpper());
}

void ColorPanel::setSelColor(const LightColor& color) {
  showColor(color);
  emit selColorChanged();
}

void ColorPanel::onNumTextChange(LXNumberTextField& /*sender*/) {
  const auto part = [this](std::size_t i) {
    return static_cast<std::uint32_t>(m_numbers[i]->value());
  };
  setSelColor(LightColor::ofBytes(part(0), part(1), part(2)));
}

// Six digits are a color; any other text is rejected.
void ColorPanel::takeHex() {
  QString code = m_hexTxt->text();
  code.remove(u'#');
  const QColor color(u'#' + code);
  if (code.size() == hexDigits - 1 && color.isValid()) {
    setSelColor(LightColor::of(color));
  } else {
    showColor(m_selColor);
  }
}

void ColorPanel::commit() {
  for (LXNumberTextField* number : m_numbers) {
    number->commit();
  }
  m_hexTxt->commit();
}
