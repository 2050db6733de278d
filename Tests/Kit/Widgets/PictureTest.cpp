// Pictures: when they are loaded, and how they are drawn at each scale of a screen.

#include <QPainter>
#include <QtMath>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXImageView.h"
#include "Tests/Kit/Widgets/PlainPictures.h"
#include "Tests/Support/ViewTest.h"

namespace {

class Pictures : public ViewTest {};

// A picture of 20 by 20 in which no two neighboring pixels are alike, at any scale.
LXImage::Loaded speckled(qreal ratio) {
  QImage image(qCeil(20 * ratio), qCeil(20 * ratio), QImage::Format_RGB32);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      image.setPixel(x, y, qRgb(x * 5, y * 5, (x + y) % 2 * 255));
    }
  }
  image.setDevicePixelRatio(ratio);
  return {QPixmap::fromImage(image), {20, 20}};
}

// Stands for a screen of that scale.
QImage paper(qreal ratio) {
  QImage image(qCeil(40 * ratio), qCeil(40 * ratio), QImage::Format_RGB32);
  image.fill(Qt::black);
  image.setDevicePixelRatio(ratio);
  return image;
}

}  // namespace

TEST_F(Pictures, ImageViewsDrawWhatTheyWereGiven) {
  LXImageView image;
  image.resize(40, 40);
  image.setImage(LXImage(filled(red)), {10, 10});
  EXPECT_EQ(image.grab().toImage().pixelColor(15, 15), red);
  EXPECT_NE(image.grab().toImage().pixelColor(5, 5), red);
  LXImageBgView ground;
  ground.resize(60, 80);
  ground.setImage(LXImage(filled(green)));
  EXPECT_EQ(ground.grab().toImage().pixelColor(55, 75), green);
  LXColorView color;
  color.resize(10, 10);
  color.setColor(blue);
  EXPECT_EQ(color.grab().toImage().pixelColor(5, 5), blue);
}

TEST_F(Pictures, APictureIsBroughtWhenItIsFirstDrawn) {
  int loads = 0;
  const LXImage image([&](qreal /*ratio*/) {
    ++loads;
    return LXImage::Loaded{filled(red), {20, 20}};
  });
  const LXImage part = image.slice({5, 5, 10, 10});
  EXPECT_FALSE(image.isLoaded());
  EXPECT_EQ(loads, 0);
  EXPECT_EQ(part.pixmap().toImage().pixelColor(0, 0), red);
  EXPECT_TRUE(image.isLoaded());
  EXPECT_EQ(image.size(), QSize(20, 20));
  EXPECT_EQ(loads, 1);
  EXPECT_TRUE(image.slice({}).isNull());
  EXPECT_TRUE(LXImage().slice({0, 0, 1, 1}).isNull());
}

TEST_F(Pictures, APictureIsDrawnPixelByPixelAtAnyScale) {
  for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
    const LXImage image(speckled);
    EXPECT_EQ(image.slice({3, 5, 7, 9}).size(), QSize(7, 9));
    QImage screen = paper(ratio);
    {
      QPainter painter(&screen);
      // A fractional place, as of a control at 125 %.
      image.draw(painter, {7, 9});
    }
    const QPoint corner = QPointF(7 * ratio, 9 * ratio).toPoint();
    const QImage expected = speckled(ratio).pixmap.toImage();
    EXPECT_EQ(image.size(), QSize(20, 20));
    EXPECT_TRUE(screen.copy(QRect(corner, expected.size())) == expected) << ratio;
  }
}

TEST_F(Pictures, SlicesLieOnTheirPictureAtAnyScale) {
  for (const qreal ratio : {1.25, 1.5, 1.75}) {
    const LXImage image(speckled);
    QImage whole = paper(ratio);
    {
      QPainter painter(&whole);
      painter.translate(7, 9);
      image.draw(painter, {0, 0});
    }
    QImage parts = whole;
    {
      QPainter painter(&parts);
      const LXImage copy(speckled);
      painter.translate(7, 9);
      for (const QRect& rect : {QRect(3, 5, 7, 9), QRect(1, 1, 2, 3), QRect(11, 13, 9, 7)}) {
        painter.save();
        painter.translate(rect.topLeft());
        copy.slice(rect).draw(painter, {0, 0});
        painter.restore();
      }
      image.drawPart(painter, {10, 2, 5, 5});
    }
    EXPECT_TRUE(parts == whole) << ratio;
  }
}

TEST_F(Pictures, APictureIsBroughtAgainForAScreenOfAnotherScale) {
  std::vector<qreal> ratios;
  const LXImage image([&](qreal ratio) {
    ratios.push_back(ratio);
    return speckled(ratio);
  });
  for (const qreal ratio : {1.0, 1.0, 1.5, 1.5, 1.0}) {
    QImage screen = paper(ratio);
    QPainter painter(&screen);
    image.slice({2, 2, 8, 8}).draw(painter, {0, 0});
  }
  EXPECT_EQ(ratios, (std::vector<qreal>{1.0, 1.5, 1.0}));
}
