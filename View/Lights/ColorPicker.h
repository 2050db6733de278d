#pragma once

#include <QWidget>
#include <array>
#include <vector>

#include "View/Lights/LightColor.h"
#include "View/Screen/TavImageView.h"

class LXNumberTextField;
class LXTextField;

// The color being picked, as hue, saturation and brightness of 0..1: what two sliders and fields
// share, so that a grey does not lose its hue nor a black its saturation.
struct PickedColor {
  double hue = 0;
  double saturation = 0;
  double brightness = 0;

  LightColor color() const;
  // Keeps the hue of a grey, and hue and saturation of black.
  void setColor(const LightColor& color);
};

// Where the user picks with the pointer's left button or the arrow keys.
class PickView : public QWidget {
  Q_OBJECT

 public:
  explicit PickView(QWidget* parent);

  // Shows a color and tells nobody.
  void show(const PickedColor& color);

 signals:
  // By the user.
  void picked();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  // The point may lie outside.
  virtual void pickAt(const QPointF& point) = 0;
  void tellPicked();

  PickedColor m_color;
};

// A field of all hues, left to right, in all saturations, bottom to top.
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

// A few colors that were used, the last one first. They last as long as the program.
class RecentColorsView : public QWidget {
  Q_OBJECT

 public:
  static constexpr std::size_t most = 10;

  explicit RecentColorsView(QWidget* parent);

  static void remember(const LightColor& color);
  // Shows what is remembered now.
  void refresh();

 signals:
  void chosen(const QColor& color);

 private:
  std::vector<QWidget*> m_swatches;
};

// The color in numbers: red, green and blue of 0..255, and the code of the three.
class ColorPanel : public TavImageView {
  Q_OBJECT

 public:
  struct Places {
    QRect red;
    QRect green;
    QRect blue;
    QRect hex;
  };

  // Without a picture of its own: it lies on its parent's.
  ColorPanel(const QSize& frame, const Places& places, QWidget* parent);

  // Chooses a color, which is reported as a change.
  void setSelColor(const LightColor& color);
  const LightColor& selColor() const { return m_selColor; }
  // Shows a color and tells nobody.
  void showColor(const LightColor& color);
  void onNumTextChange(LXNumberTextField& sender) override;
  // What was typed and not committed counts.
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
