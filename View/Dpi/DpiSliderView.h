#pragma once

#include <cstdint>

#include "Action/Record/Limits.h"
#include "View/Screen/TavImageView.h"

class DpiSliderView;
class LXProgressBar;
class QLabel;

// Gets the changes that the user makes with a slider.
class DpiSliderDelegate {
 public:
  virtual ~DpiSliderDelegate() = default;
  virtual void OnChangeSliderValue(DpiSliderView& sender) = 0;
};

// Sliders for one DPI level: one for both axes, or one per axis. Values are in the mouse's unit,
// 2..164, which is 50 DPI; the labels at the knobs show DPI.
class DpiSliderView : public TavImageView {
  Q_OBJECT

 public:
  enum ShowType : int { ShowCommon = 1, ShowXY = 2 };
  enum Tag : int { CommonTag = 1000, XTag = 1001, YTag = 1002 };

  explicit DpiSliderView(QWidget* parent = nullptr);

  // Not owned; must outlive the sliders.
  void setDelegate(DpiSliderDelegate* delegate) { m_delegate = delegate; }

  // Setting a value moves the slider without calling the delegate.
  void setDpiValue(std::uint32_t value);
  void setDpiXValue(std::uint32_t value);
  void setDpiYValue(std::uint32_t value);
  std::uint32_t dpiValue() const { return m_dpiValue; }
  std::uint32_t dpiXValue() const { return m_dpiXValue; }
  std::uint32_t dpiYValue() const { return m_dpiYValue; }
  void setShowType(int showType);
  int showType() const { return m_showType; }

  void progessBarAction(LXProgressBar& sender);

 protected:
  void initControls() override;

 private:
  struct Slider {
    LXProgressBar* bar = nullptr;
    QLabel* label = nullptr;
  };

  Slider addSlider(const QRect& frame, int tag, const char* name, const QString& axis);
  static void showValue(const Slider& slider, std::uint32_t value);
  static void setShown(const Slider& slider, bool isShown);

  Slider m_common;
  Slider m_x;
  Slider m_y;
  std::uint32_t m_dpiValue = limits::minimumSensitivity;
  std::uint32_t m_dpiXValue = limits::minimumSensitivity;
  std::uint32_t m_dpiYValue = limits::minimumSensitivity;
  int m_showType = ShowCommon;
  DpiSliderDelegate* m_delegate = nullptr;
};
