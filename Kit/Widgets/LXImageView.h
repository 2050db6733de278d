#pragma once

#include <QColor>
#include <QWidget>

#include "Kit/Widgets/LXImage.h"

// Shows a picture, or none. Pointer events pass through it.
class LXImageView : public QWidget {
  Q_OBJECT

 public:
  explicit LXImageView(QWidget* parent = nullptr);

  // Repaints only the areas of the old and new pictures. `position` is the place of the new one.
  void setImage(LXImage image, const QPoint& position = {});
  const LXImage& image() const { return m_image; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QRect imageRect() const;

  LXImage m_image;
  QPoint m_position;
};

// A picture that fills the view at any size.
class LXImageBgView : public LXImageView {
  Q_OBJECT

 public:
  using LXImageView::LXImageView;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

// Shows one color.
class LXColorView : public QWidget {
  Q_OBJECT

 public:
  explicit LXColorView(QWidget* parent = nullptr);

  void setColor(const QColor& color);
  QColor color() const { return m_color; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor m_color = Qt::black;
};
