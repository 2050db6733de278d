#include "View/Screen/Pictures.h"

#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QtMath>
#include <algorithm>
#include <future>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "Action/Texts/TooltipManager.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Widgets/DecodedPicture.h"
#include "View/Screen/FullStops.h"

namespace {

constexpr qreal pointsPerInch = 72;
// Smaller type is hard to read; longer text is cut instead.
constexpr int smallestType = 11;

QString pathOf(const QString& fileName) {
  return QString::fromStdString(LXPlatform::current().resourceFolder.string()) + u'/' + fileName;
}

// The file for a screen of that scale. Any scale but 1 is made of the large file.
QString scaledPathOf(const QString& path, qreal ratio) {
  if (!qFuzzyCompare(ratio, 1)) {
    const qsizetype dot = path.lastIndexOf(u'.');
    QString fine = path.left(dot) + QStringLiteral("@2x") + path.mid(dot);
    if (QFileInfo::exists(fine)) {
      return fine;
    }
  }
  return path;
}

// Converts now to the format for drawing, so that drawing is fast.
QImage readNow(const QString& scaledPath) {
  QImage image = QImageReader(scaledPath).read();
  if (image.isNull()) {
    return image;
  }
  image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                          : QImage::Format_RGB32);
  image.setDevicePixelRatio(scaledPath.contains(u"@2x.") ? 2 : 1);
  return image;
}

// Scales the picture with all its detail, so that it is drawn pixel by pixel.
QImage scaled(const QImage& image, qreal ratio) {
  if (image.isNull() || qFuzzyCompare(image.devicePixelRatio(), ratio)) {
    return image;
  }
  const QSizeF size = image.deviceIndependentSize() * ratio;
  QImage result = image.scaled(qCeil(size.width()), qCeil(size.height()), Qt::IgnoreAspectRatio,
                               Qt::SmoothTransformation);
  result.setDevicePixelRatio(ratio);
  return result;
}

struct Read {
  QImage image;
  QSize size;
};

// Pictures of the start lie on the disk as their pixels too.
QString decodedPathOf(const QString& path) {
  return path.left(path.lastIndexOf(u'.')) + QStringLiteral(".decoded");
}

Read readScaled(const QString& path, qreal ratio) {
  if (qFuzzyCompare(ratio, 1)) {
    QImage image = readDecodedPicture(decodedPathOf(path));
    if (!image.isNull()) {
      const QSize size = image.size();
      return {std::move(image), size};
    }
  }
  const QImage image = readNow(scaledPathOf(path, ratio));
  return {scaled(image, ratio), image.deviceIndependentSize().toSize()};
}

std::map<QString, std::future<Read>>& prefetched() {
  static std::map<QString, std::future<Read>> images;
  return images;
}

// A picture that is being read ahead is found by its path and its scale.
QString prefetchKey(const QString& path, qreal ratio) {
  return path + u'@' + QString::number(ratio);
}

Read read(const QString& path, qreal ratio) {
  auto found = prefetched().extract(prefetchKey(path, ratio));
  return found ? found.mapped().get() : readScaled(path, ratio);
}

std::map<QString, QJsonObject>& loadedWords() {
  static std::map<QString, QJsonObject> words;
  return words;
}

// The words of a drawing. Caches only screens that were shown.
const QJsonObject& wordsOf(const QString& screen) {
  auto& words = loadedWords();
  const auto found = words.find(screen);
  if (found != words.end()) {
    return found->second;
  }
  QFile file(pathOf(QStringLiteral("Words/") + screen + QStringLiteral(".json")));
  return words[screen] = file.open(QIODevice::ReadOnly)
                             ? QJsonDocument::fromJson(file.readAll()).object()
                             : QJsonObject();
}

// The word in the user's language.
QString textOf(const QJsonObject& word) {
  const QString key = word[u"key"].toString();
  if (!key.isEmpty()) {
    if (const auto text = TooltipManager::shareTooltipManager().getTooltip(key.toStdString())) {
      return fullstops::completed(QString::fromStdString(*text));
    }
  }
  return word[u"text"].toString();
}

QColor colorOf(const QJsonObject& word, const QString& state) {
  const QJsonObject colors = word[u"colors"].toObject();
  return {colors[colors.contains(state) ? state : QStringLiteral("Normal")].toString()};
}

Qt::Alignment alignmentOf(const QJsonObject& word) {
  const QString name = word[u"align"].toString();
  if (name == u"center") {
    return Qt::AlignHCenter | Qt::AlignVCenter;
  }
  if (name == u"right") {
    return Qt::AlignRight | Qt::AlignVCenter;
  }
  // A paragraph starts at the top, whatever its number of lines.
  return Qt::AlignLeft | (word[u"wrap"].toBool() ? Qt::AlignTop : Qt::AlignVCenter);
}

bool fits(const QFontMetricsF& metrics, const QString& text, const QRectF& room, int flags) {
  if ((flags & Qt::TextSingleLine) != 0) {
    return metrics.horizontalAdvance(text) <= room.width();
  }
  const QRectF needed = metrics.boundingRect(room, flags, text);
  return needed.width() <= room.width() && needed.height() <= room.height();
}

// Other languages may need more room: reduces the type size until the words fit.
QFont fittingFont(const QPixmap& picture, const QJsonObject& word, const QString& text,
                  const QRectF& room, int flags) {
  const auto weight = word[u"fontWeight"].toInt(QFont::Normal);
  QFont font;
  // In half pixels.
  for (int size = qRound(word[u"fontSize"].toDouble() * 2); size >= smallestType * 2; --size) {
    font = pictures::font(size / 2.0, weight);
    if (fits(QFontMetricsF(font, &picture), text, room, flags)) {
      break;
    }
  }
  return font;
}

void drawWord(QPainter& painter, const QPixmap& picture, const QJsonObject& word,
              const QString& state) {
  const QRectF room(word[u"x"].toDouble(), word[u"y"].toDouble(), word[u"width"].toDouble(),
                    word[u"height"].toDouble());
  const bool wraps = word[u"wrap"].toBool();
  const int flags =
      static_cast<int>(alignmentOf(word)) | (wraps ? Qt::TextWordWrap : Qt::TextSingleLine);
  QString text = textOf(word);
  painter.setPen(colorOf(word, state));
  // The original words always fit in the drawing.
  if (!wraps && text == word[u"text"].toString()) {
    painter.setFont(
        pictures::font(word[u"fontSize"].toDouble(), word[u"fontWeight"].toInt(QFont::Normal)));
    painter.drawText(room, flags, text);
    return;
  }
  const QFont font = fittingFont(picture, word, text, room, flags);
  const QFontMetricsF metrics(font, &picture);
  if (!wraps && !fits(metrics, text, room, flags)) {
    text = metrics.elidedText(text, Qt::ElideRight, room.width());
  }
  painter.setFont(font);
  painter.drawText(room, flags, text);
}

LXImage::Loaded loadNow(const QString& path, const QString& screen, const QString& state,
                        qreal ratio) {
  Read ground = read(path, ratio);
  // Moved, so that drawing the words makes no copy.
  QPixmap picture = QPixmap::fromImage(std::move(ground.image));
  const QJsonObject& drawing = wordsOf(screen);
  const QJsonArray words = drawing[u"words"].toArray();
  // An unknown state belongs to the name of another picture, which has no words.
  const bool isOfDrawing = state.isEmpty() || drawing[u"states"].toArray().contains(state);
  if (picture.isNull() || words.isEmpty() || !isOfDrawing) {
    return {picture, ground.size};
  }
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::TextAntialiasing);
  for (const auto& each : words) {
    const QJsonObject word = each.toObject();
    // Only the words of controls are seen in the pictures of other states.
    if (state.isEmpty() || word[u"colors"].toObject().contains(state)) {
      drawWord(painter, picture, word, state);
    }
  }
  painter.end();
  return {picture, ground.size};
}

}  // namespace

LXImage pictures::load(const QString& fileName) {
  const QString path = pathOf(fileName);
  if (fileName.isEmpty() || !QFileInfo::exists(path)) {
    return {};
  }
  const QString stem = QFileInfo(fileName).completeBaseName();
  const qsizetype underscore = stem.indexOf(u'_');
  const QString screen = stem.left(underscore < 0 ? stem.size() : underscore);
  const QString state = underscore < 0 ? QString() : stem.mid(underscore + 1);
  return LXImage(
      [path, screen, state](qreal ratio) { return loadNow(path, screen, state, ratio); });
}

void pictures::prefetch(const QStringList& fileNames) {
  const qreal ratio = qGuiApp->devicePixelRatio();
  std::vector<std::pair<QString, std::promise<Read>>> wanted;
  for (const QString& fileName : fileNames) {
    const QString path = pathOf(fileName);
    wanted.emplace_back(path, std::promise<Read>());
    prefetched()[prefetchKey(path, ratio)] = wanted.back().second.get_future();
  }
  // One thread, so that the window keeps a processor for itself.
  static std::future<void> reader;
  reader = std::async(std::launch::async, [images = std::move(wanted), ratio]() mutable {
    for (auto& [path, image] : images) {
      image.set_value(readScaled(path, ratio));
    }
  });
}

QFont pictures::font(qreal pixels, int weight) {
  QFont font;
  font.setFamilies({QStringLiteral("Inter"), font.family()});
  // Sizes are in half pixels; Qt takes fractions only in points.
  font.setPointSizeF(pixels * pointsPerInch / QPixmap(1, 1).logicalDpiY());
  font.setWeight(static_cast<QFont::Weight>(weight));
  return font;
}

void pictures::releaseWords() {
  loadedWords().clear();
}
