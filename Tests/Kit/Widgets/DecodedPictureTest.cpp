// Pictures that lie on the disk as their pixels.

#include <QFile>
#include <QImageReader>
#include <QTemporaryDir>
#include <cstring>

#include <gmock/gmock.h>

#include "ArtworkFrames.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Widgets/DecodedPicture.h"
#include "Tests/Support/ViewTest.h"
#include "View/Screen/Pictures.h"

namespace {

using Numbers = std::vector<std::uint32_t>;

constexpr std::uint32_t name = 0x3158504E;

class DecodedPictures : public ViewTest {
 protected:
  QString put(const Numbers& numbers, std::size_t cutBytes = 0) {
    const QString path = m_folder.filePath(QStringLiteral("A.decoded"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(numbers.data()),
               static_cast<qint64>(numbers.size() * sizeof(std::uint32_t) - cutBytes));
    return path;
  }
  QString filePath(const char* fileName) {
    return m_folder.filePath(QString::fromLatin1(fileName));
  }

 private:
  QTemporaryDir m_folder;
};

QImage decodedNow(const QString& path) {
  QImage image = QImageReader(path).read();
  image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                          : QImage::Format_RGB32);
  return image;
}

QString resource(std::string_view picture, const char* extension) {
  return QStringLiteral(NERIN_RESOURCES "/") +
         QString::fromUtf8(picture.data(), static_cast<qsizetype>(picture.size())) +
         QString::fromLatin1(extension);
}

}  // namespace

TEST_F(DecodedPictures, OfTheStartAreTheirPngsPixelByPixel) {
  EXPECT_THAT(Artwork::startUpPictures, testing::SizeIs(testing::Ge(8U)));
  for (const std::string_view picture : Artwork::startUpPictures) {
    const QImage decoded = readDecodedPicture(resource(picture, ".decoded"));
    const QImage expected = decodedNow(resource(picture, ".png"));
    EXPECT_EQ(decoded.format(), expected.format()) << picture;
    EXPECT_TRUE(decoded == expected) << picture;
  }
}

TEST_F(DecodedPictures, HoldTheirPiecesAndAreTransparentElsewhere) {
  const QImage image = readDecodedPicture(
      put({name, 3, 2, 1, 2, /**/ 0, 0, 1, 2, /**/ 2, 1, 1, 1, /**/ 0xFF000001, 0x80000002, 3}));
  ASSERT_EQ(image.size(), QSize(3, 2));
  EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
  const auto at = [&](int x, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y))[x];
  };
  EXPECT_EQ(at(0, 0), 0xFF000001);
  EXPECT_EQ(at(0, 1), 0x80000002);
  EXPECT_EQ(at(2, 1), 3U);
  EXPECT_EQ(at(1, 0), 0U);
  EXPECT_EQ(at(2, 0), 0U);
}

TEST_F(DecodedPictures, OfOnePieceCanBeDrawnOnWithoutChangingTheirFile) {
  const QString path = put({name, 2, 1, 0, 1, 0, 0, 2, 1, 0xFF0000FF, 0xFF00FF00});
  {
    QImage image = readDecodedPicture(path);
    const QRgb* pixels = reinterpret_cast<const QRgb*>(image.constBits());
    image.fill(Qt::red);
    EXPECT_EQ(image.pixel(0, 0), 0xFFFF0000);
    EXPECT_EQ(reinterpret_cast<const QRgb*>(image.constBits()), pixels) << "copied";
  }
  EXPECT_EQ(readDecodedPicture(path).pixel(0, 0), 0xFF0000FF);
}

TEST_F(DecodedPictures, WithoutAPieceAreTransparent) {
  const QImage image = readDecodedPicture(put({name, 2, 2, 1, 0}));
  EXPECT_EQ(image.size(), QSize(2, 2));
  EXPECT_EQ(image.pixelColor(1, 1).alpha(), 0);
}

TEST_F(DecodedPictures, ThatAreDamagedAreNone) {
  const Numbers whole{name, 2, 1, 1, 1, 0, 0, 2, 1, 7, 8};
  ASSERT_FALSE(readDecodedPicture(put(whole)).isNull());
  const auto with = [&](std::size_t index, std::uint32_t value) {
    Numbers changed = whole;
    changed[index] = value;
    return changed;
  };
  const std::vector<Numbers> damaged{
      {},
      {name},
      {name, 2, 1, 1},
      with(0, name + 1),
      with(1, 0),
      with(1, 8193),
      with(1, 0xFFFFFFFF),
      with(2, 0),
      with(3, 2),
      with(4, 0),
      with(4, 2),
      with(4, 0xFFFFFFFF),
      with(5, 1),
      with(5, 0xFFFFFFFF),
      with(6, 1),
      with(7, 0),
      with(7, 3),
      with(7, 0x80000000),
      with(8, 2),
      {name, 2, 1, 1, 1, 0, 0, 2, 1, 7},
      {name, 2, 1, 1, 1, 0, 0, 2, 1, 7, 8, 9},
      {name, 2, 1, 0, 1, 0, 0, 1, 1, 7},
  };
  for (std::size_t i = 0; i < damaged.size(); ++i) {
    EXPECT_TRUE(readDecodedPicture(put(damaged[i])).isNull()) << i;
  }
  EXPECT_TRUE(readDecodedPicture(put(whole, 1)).isNull());
  EXPECT_TRUE(readDecodedPicture(filePath("missing.decoded")).isNull());
  EXPECT_TRUE(readDecodedPicture(filePath("")).isNull()) << "a folder";
}

// The file beside it may be damaged, or be of a program of another version.
TEST_F(DecodedPictures, ThatAreDamagedAreDecodedOfThePng) {
  const QString png = filePath("TopLight1.png");
  ASSERT_TRUE(QFile::copy(QStringLiteral(NERIN_RESOURCES "/TopLight1.png"), png));
  LXPlatform platform = LXPlatform::current();
  platform.resourceFolder = QFileInfo(png).path().toStdString();
  LXPlatform::install(platform);
  const QImage expected = decodedNow(png);
  for (const QByteArray& bytes : {QByteArray(), QByteArray("NPX1"), QByteArray(1000, '\xFF')}) {
    QFile file(filePath("TopLight1.decoded"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
    file.close();
    EXPECT_TRUE(pictures::load(QStringLiteral("TopLight1.png")).pixmap(1).toImage() == expected);
  }
}
