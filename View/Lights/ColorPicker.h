#pragma once

#include <QPixmap>
#include <QWidget>
#include <array>

#include "View/Lights/LightColor.h"
#include "View/Screen/TavImageView.h"

class LXNumberTextField;
class LXTextField;

// The picked color: hue, saturation and brightness, 0..1. Stored in this form so that gray keeps
// its hue and black its hue and saturation.
struct PickedColor {
  double hue = 0;
  double saturation = 0;
  double brightness = 0;

  LightColor color() const;
  // Keeps the hue of gray, and the hue and saturation of black.
  void setColor(const LightColor& color);
};

// The user picks here with the left mouse button or the arrow keys.
class PickView : public QWidget {
  Q_OBJECT

 public:
  explicit PickView(QWidget* parent);

  // Shows a color without a signal.
  void show(const PickedColor& color);

 signals:
  // The user picked a color.
  void picked();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  // The point may lie outside the view.
  virtual void pickAt(const QPointF& point) = 0;
  void tellPicked();

  PickedColor m_color;
};

// All hues, left to right, in all saturations, bottom to top.
class HueSaturationView : public PickView {
  Q_OBJECT

 public:
  using PickView::PickView;

  double hue() const { return m_color.hue; }
  double saturation() const { return m_color.saturation; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void pickAt(const QPointF& point) override;

 private:
  void pick(double hue, double saturation);
  void drawField();

  QPixmap m_field;
};

// The brightness of the picked color, left to right.
class BrightnessView : public PickView {
  Q_OBJECT

 public:
  using PickView::PickView;

  double brightness() const { return m_color.brightness; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void pickAt(const QPointF& point) override;

 private:
  void pick(double brightness);
};

// The recently used colors, newest first. They are kept until the program ends. The user chooses
// one by a click, or with the arrow keys and Return.
class RecentColorsView : public QWidget {
  Q_OBJECT

 public:
  static constexpr std::size_t most = 10;

  explicit RecentColorsView(QWidget* parent);

  static void remember(const LightColor& color);
  // Shows the current list.
  void refresh();

 signals:
  void chosen(const QColor& color);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool moveFocus(const QObject* from, int key);

  std::array<QWidget*, most> m_swatches{};
};

// The color as numbers: red, green and blue, 0..255, and the hex code.
class ColorPanel : public TavImageView {
  Q_OBJECT

 public:
  struct Places {
    QRect red;
    QRect green;
    QRect blue;
    QRect hex;
  };

  // Has no picture: it lies on its parent's picture.
  ColorPanel(const QSize& frame, const Places& places, QWidget* parent);

  // Selects a color and reports the change.
  void setSelColor(const LightColor& color);
  const LightColor& selColor() const { return m_selColor; }
  // Shows a color without reporting a change.
  void showColor(const LightColor& color);
  void onNumTextChange(LXNumberTextField& sender) override;
  // Commits typed values.
  void commit();

 signals:
  void selColorChanged();

 protected:
  void initControls() override;

 private:
  void takeHex();

  Places m_places;
  std::array<LXNumberTextField*, 3> m_numbers{};
  LXTextField* m_hexTxt = nullptr;
  LightColor m_selColor;
};
