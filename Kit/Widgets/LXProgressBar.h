#pragma once

#include <QAbstractSlider>
#include <functional>

#include "Kit/Widgets/LXImage.h"

// A slider drawn from a background, a hover background and a knob. Larger values are further right
// or further up. Setting the value through this class sends no notification; a change by the user
// does, whether by pointer, key, wheel or screen reader.
class LXProgressBar : public QAbstractSlider {
  Q_OBJECT

 public:
  using Action = std::function<void(LXProgressBar&)>;

  explicit LXProgressBar(QWidget* parent = nullptr);

  void setBackgroundImage(LXImage image);
  void setOverImage(LXImage image);
  void setIndicateImage(LXImage image);
  void setChangeAction(Action action) { m_action = std::move(action); }
  void setMaxValue(int maximum);
  void setMinValue(int minimum);
  void setValue(int value);
  // The user's choice is told even if the slider stands there already: for values that other
  // controls change, too.
  void setTellsEveryChoice(bool tellsEveryChoice) { m_tellsEveryChoice = tellsEveryChoice; }
  void setTag(int tag) { m_tag = tag; }
  int tag() const { return m_tag; }
  // 1, a bar with a knob, is the only style.
  void setBarStyle(int style) { m_barStyle = style; }
  int barStyle() const { return m_barStyle; }

  // The middle of the knob, in pixels from the left or from the bottom.
  int indicatePosition() const;
  QRect indicateRect() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void sliderChange(SliderChange change) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  QSize knobSize() const;
  int travel() const;
  void moveTo(const QPoint& point);
  // After a choice of the user that may have changed nothing.
  void tellIfStill(int before);

  LXImage m_background;
  LXImage m_over;
  LXImage m_indicate;
  Action m_action;
  int m_tag = 0;
  int m_barStyle = 1;
  bool m_tellsEveryChoice = false;
  bool m_isPointerIn = false;
  bool m_isSetByProgram = false;
};
