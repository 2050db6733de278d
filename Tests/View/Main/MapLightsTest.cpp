// The lights of the mouse in the drawings: what is kept of their pictures shows no difference.

#include <QPainter>
#include <QtMath>

#include <gmock/gmock.h>

#include "Tests/Support/ViewTest.h"
#include "View/Lights/LightColor.h"
#include "View/Lights/LitPart.h"
#include "View/Main/MapLights.h"
#include "View/Screen/Pictures.h"

namespace {

class MapLightsPictures : public ViewTest {
 protected:
  static constexpr QSize map{736, 456};

  static _Nerin_PROFILE profileOf(bool isBattle) {
    _Nerin_PROFILE profile{};
    profile.modeType = isBattle ? 1 : 0;
    profile.lightColorArr[0] = {.cR = 255, .cG = 0, .cB = 40};
    profile.lightColorArr[1] = {.cR = 10, .cG = 200, .cB = 90};
    profile.lightColorArr[2] = {.cR = 0, .cG = 0, .cB = 255};
    profile.lightColorArr[3] = {.cR = 120, .cG = 60, .cB = 200};
    return profile;
  }

  static QImage paper(qreal ratio) {
    QImage image(map * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::darkGray);
    return image;
  }

  // Every picture as a whole, over the one before it.
  static QImage drawnWhole(const QString& stem, const QPoint& place, const _Nerin_PROFILE& profile,
                           qreal ratio) {
    QPixmap all;
    for (std::size_t zone = 0; zone < zoneCount; ++zone) {
      const LXImage light = pictures::load(stem + QStringLiteral("%1.png").arg(zone + 1));
      if (light.isNull()) {
        continue;
      }
      const auto& color = profile.lightColorArr[zone];
      const QPixmap picture =
          tinted(light, LightColor::ofBytes(color.cR, color.cG, color.cB).shown()).pixmap(ratio);
      if (all.isNull()) {
        all = QPixmap(picture.size());
        all.setDevicePixelRatio(ratio);
        all.fill(Qt::transparent);
      }
      QPainter painter(&all);
      for (int i = 0; i < (profile.modeType == 1 ? 3 : 1); ++i) {
        painter.drawPixmap(QPointF(), picture);
      }
    }
    QImage image = paper(ratio);
    image.setDevicePixelRatio(1);
    all.setDevicePixelRatio(1);
    QPainter(&image).drawPixmap((QPointF(place) * ratio).toPoint(), all);
    return image;
  }

  static QImage shown(const QString& stem, const QPoint& place, const _Nerin_PROFILE& profile,
                      qreal ratio) {
    MapLights lights(stem, place, nullptr);
    lights.resize(map);
    lights.show(profile);
    QImage image = paper(ratio);
    lights.render(&image, {}, {}, QWidget::DrawChildren);
    image.setDevicePixelRatio(1);
    return image;
  }
};

}  // namespace

TEST_F(MapLightsPictures, LookAsTheirWholePicturesDoAtAnyScale) {
  for (const char* stem : {"TopLight", "SideLight"}) {
    for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0}) {
      for (const bool isBattle : {false, true}) {
        const _Nerin_PROFILE profile = profileOf(isBattle);
        const QString name = QString::fromLatin1(stem);
        const QImage expected = drawnWhole(name, {80, 10}, profile, ratio);
        EXPECT_TRUE(shown(name, {80, 10}, profile, ratio) == expected)
            << stem << " at " << ratio << (isBattle ? ", Battle" : "");
        EXPECT_FALSE(expected == drawnWhole(name, {80, 10}, profileOf(!isBattle), ratio));
      }
    }
  }
}

TEST_F(MapLightsPictures, KeepWhatIsLitAlone) {
  const LXImage whole = pictures::load(QStringLiteral("TopLight2.png"));
  const QImage image = whole.pixmap(1).toImage();
  const LitPart lit = litPartOf(whole);
  EXPECT_LT(lit.place.width() * lit.place.height(), image.width() * image.height() / 50);
  EXPECT_TRUE(lit.picture.pixmap(1).toImage() == image.copy(lit.place));
  QImage rest = image;
  QPainter painter(&rest);
  painter.setCompositionMode(QPainter::CompositionMode_Clear);
  painter.fillRect(lit.place, Qt::transparent);
  painter.end();
  QImage dark = rest;
  dark.fill(Qt::transparent);
  EXPECT_TRUE(rest == dark);
}

TEST_F(MapLightsPictures, ADrawingWithoutALitPixelHasNoPart) {
  QPixmap dark(40, 40);
  dark.fill(Qt::transparent);
  const LitPart lit = litPartOf(LXImage(dark));
  EXPECT_TRUE(lit.picture.isNull());
  EXPECT_TRUE(lit.place.isEmpty());
}
