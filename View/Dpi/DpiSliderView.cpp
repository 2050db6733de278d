#include "View/Dpi/DpiSliderView.h"

#include <QLabel>
#include <algorithm>

#include "ArtworkFrames.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"

namespace {

using frames = Artwork::DpiSliderView;
using framesXY = Artwork::DpiSliderViewXY;

constexpr QSize labelSize(32, 14);
constexpr qreal labelType = 11;
// For the wheel and the page keys.
constexpr int pageSteps = 4;

}  // namespace

DpiSliderView::DpiSliderView(QWidget* parent)
    : TavImageView({frames::screenWidth, frames::screenHeight}, parent) {}

void DpiSliderView::initControls() {
  setImageByName(QStringLiteral("DpiSliderViewXY_Normal.png"));
  m_x = addSlider(frameRect(framesXY::dpiXPro), XTag, "dpiXPro", QStringLiteral(" X"));
  m_y = addSlider(frameRect(framesXY::dpiYPro), YTag, "dpiYPro", QStringLiteral(" Y"));
  setImageByName(QStringLiteral("DpiSliderView_Normal.png"));
  m_common = addSlider(frameRect(frames::dpiPro), CommonTag, "dpiPro", {});
  setDpiValue(m_dpiValue);
  setDpiXValue(m_dpiXValue);
  setDpiYValue(m_dpiYValue);
  setShowType(m_showType);
}

DpiSliderView::Slider DpiSliderView::addSlider(const QRect& frame, int tag, const char* name,
                                               const QString& axis) {
  Slider slider;
  slider.bar = NerinAction::AddProBar(
      frame, [this](LXProgressBar& sender) { progessBarAction(sender); }, *this,
      pictures::load(QStringLiteral("Slider.png")), static_cast<int>(limits::maximumSensitivity),
      static_cast<int>(limits::minimumSensitivity));
  slider.bar->setOverImage(NerinAction::GetImageFromRect(overImage(), frame));
  slider.bar->setTag(tag);
  slider.bar->setPageStep(pageSteps);
  slider.bar->setObjectName(QString::fromLatin1(name));
  slider.bar->setAccessibleName(NerinAction::tooltipText("DPI value") + axis);
  slider.label = new QLabel(this);
  slider.label->setFont(pictures::font(labelType, QFont::DemiBold));
  slider.label->setAlignment(Qt::AlignCenter);
  slider.label->resize(labelSize);
  slider.label->setAttribute(Qt::WA_TransparentForMouseEvents);
  return slider;
}

void DpiSliderView::showValue(const Slider& slider, std::uint32_t value) {
  if (slider.bar == nullptr) {
    return;
  }
  slider.bar->setValue(static_cast<int>(std::min(value, limits::maximumSensitivity)));
  slider.label->setText(QString::number(value * limits::dpiStep));
  const int most = slider.bar->parentWidget()->width() - labelSize.width();
  const int left = slider.bar->x() + slider.bar->indicatePosition() - labelSize.width() / 2;
  slider.label->move(std::clamp(left, 0, most), slider.bar->y() - labelSize.height());
}

void DpiSliderView::setDpiValue(std::uint32_t value) {
  m_dpiValue = value;
  showValue(m_common, value);
}

void DpiSliderView::setDpiXValue(std::uint32_t value) {
  m_dpiXValue = value;
  showValue(m_x, value);
}

void DpiSliderView::setDpiYValue(std::uint32_t value) {
  m_dpiYValue = value;
  showValue(m_y, value);
}

void DpiSliderView::setShown(const Slider& slider, bool isShown) {
  slider.bar->setVisible(isShown);
  slider.label->setVisible(isShown);
}

void DpiSliderView::setShowType(int showType) {
  m_showType = showType;
  const bool isXY = showType == ShowXY;
  setImageByName(isXY ? QStringLiteral("DpiSliderViewXY_Normal.png")
                      : QStringLiteral("DpiSliderView_Normal.png"));
  setShown(m_common, !isXY);
  setShown(m_x, isXY);
  setShown(m_y, isXY);
}

void DpiSliderView::progessBarAction(LXProgressBar& sender) {
  const auto value = static_cast<std::uint32_t>(sender.value());
  switch (sender.tag()) {
    case CommonTag:
      setDpiValue(value);
      break;
    case XTag:
      setDpiXValue(value);
      break;
    case YTag:
      setDpiYValue(value);
      break;
    default:
      return;
  }
  if (m_delegate != nullptr) {
    m_delegate->OnChangeSliderValue(*this);
  }
}
