#include "View/Assign/SubSensitivityViewSub.h"

#include "ArtworkFrames.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXImageView.h"
#include "View/Dpi/DpiSliderView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"

namespace {

using frames = Artwork::SubSensitivityViewSub;

constexpr std::uint32_t firstValue = 100;

}  // namespace

SubSensitivityViewSub::SubSensitivityViewSub(QWidget* parent)
    : TavImageView({frames::screenWidth, frames::screenHeight}, parent) {}

void SubSensitivityViewSub::initData() {
  setImageByName(QStringLiteral("SubSensitivityViewSub_Normal.png"));
}

void SubSensitivityViewSub::initControls() {
  m_enableXYChk =
      addCheckBox(frameRect(frames::enableXYChk), TagEnableXY, "enableXYChk", "Enable X-Y Axis");
  auto* label = new LXImageView(this);
  label->setGeometry(frameRect(frames::enableXYTxt));
  label->setImage(pictures::load(QStringLiteral("EnableXYText.png")));
  label->setAttribute(Qt::WA_TransparentForMouseEvents);

  m_sliderView = new DpiSliderView(this);
  m_sliderView->move(frameRect(frames::sliderView).topLeft());
  m_sliderView->setObjectName(QStringLiteral("dpiSliderView"));
  m_sliderView->construct();
  m_sliderView->setDpiValue(firstValue);
  m_sliderView->setDpiXValue(firstValue);
  m_sliderView->setDpiYValue(firstValue);
}

bool SubSensitivityViewSub::isXY() const {
  return m_enableXYChk->Checked();
}

void SubSensitivityViewSub::setIsXY(bool isXY) {
  m_enableXYChk->setChecked(isXY);
  m_sliderView->setShowType(isXY ? DpiSliderView::ShowXY : DpiSliderView::ShowCommon);
}

std::uint32_t SubSensitivityViewSub::xValue() const {
  return isXY() ? m_sliderView->dpiXValue() : m_sliderView->dpiValue();
}

std::uint32_t SubSensitivityViewSub::yValue() const {
  return isXY() ? m_sliderView->dpiYValue() : m_sliderView->dpiValue();
}

void SubSensitivityViewSub::setXValue(std::uint32_t value) {
  isXY() ? m_sliderView->setDpiXValue(value) : m_sliderView->setDpiValue(value);
}

void SubSensitivityViewSub::setYValue(std::uint32_t value) {
  isXY() ? m_sliderView->setDpiYValue(value) : m_sliderView->setDpiValue(value);
}

void SubSensitivityViewSub::buttonAction(LXButton& sender) {
  if (sender.tag() == TagEnableXY) {
    if (sender.Checked()) {
      // Both axes start from where the user was.
      m_sliderView->setDpiXValue(m_sliderView->dpiValue());
      m_sliderView->setDpiYValue(m_sliderView->dpiValue());
    }
    setIsXY(sender.Checked());
  }
}
