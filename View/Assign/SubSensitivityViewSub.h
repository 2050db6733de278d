#pragma once

#include <cstdint>

#include "View/Screen/TavImageView.h"

class DpiSliderView;
class LXImageView;

// A DPI value for both axes or, with the box checked, one per axis. In the mouse's unit.
class SubSensitivityViewSub : public TavImageView {
  Q_OBJECT

 public:
  static constexpr int TagEnableXY = 305;

  explicit SubSensitivityViewSub(QWidget* parent);

  void setIsXY(bool isXY);
  bool isXY() const;
  std::uint32_t xValue() const;
  std::uint32_t yValue() const;
  void setXValue(std::uint32_t value);
  void setYValue(std::uint32_t value);
  void buttonAction(LXButton& sender) override;
  DpiSliderView& sliderView() { return *m_sliderView; }

 protected:
  void initData() override;
  void initControls() override;

 private:
  DpiSliderView* m_sliderView = nullptr;
  LXButton* m_enableXYChk = nullptr;
};
