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

struct Picture {
  QImage image;
  QSize size;  // its place, in device-independent pixels
};

// Pictures of the start lie on the disk as their pixels too.
QString decodedPathOf(const QString& path) {
  return path.left(path.lastIndexOf(u'.')) + QStringLiteral(".decoded");
}

Picture readScaled(const QString& path, qreal ratio) {
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

// The typeface of the words. Each thread needs one of its own.
struct Typeface {
  QFont plain;
  int dotsPerInch;

  QFont font(qreal pixels, int weight) const {
    QFont sized = plain;
    // Sizes are in half pixels; Qt takes fractions only in points.
    sized.setPointSizeF(pixels * pointsPerInch / dotsPerInch);
    sized.setWeight(static_cast<QFont::Weight>(weight));
    return sized;
  }
};

Typeface typeface() {
  QFont plain;
  plain.setFamilies({QStringLiteral("Inter"), plain.family()});
  return {plain, QPixmap(1, 1).logicalDpiY()};
}

// A word of a picture as it is drawn.
struct Word {
  QString text;
  bool isOriginal;  // it is known to fit
  QRectF room;
  qreal size;
  int weight;
  int flags;
  QColor color;

  bool wraps() const { return (flags & Qt::TextWordWrap) != 0; }
};

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

Word wordOf(const QJsonObject& word, const QString& state) {
  const QString text = textOf(word);
  const bool wraps = word[u"wrap"].toBool();
  const QJsonObject colors = word[u"colors"].toObject();
  return {.text = text,
          .isOriginal = !wraps && text == word[u"text"].toString(),
          .room = QRectF(word[u"x"].toDouble(), word[u"y"].toDouble(), word[u"width"].toDouble(),
                         word[u"height"].toDouble()),
          .size = word[u"fontSize"].toDouble(),
          .weight = word[u"fontWeight"].toInt(QFont::Normal),
          .flags =
              static_cast<int>(alignmentOf(word)) | (wraps ? Qt::TextWordWrap : Qt::TextSingleLine),
          .color =
              QColor(colors[colors.contains(state) ? state : QStringLiteral("Normal")].toString())};
}

// The words of one picture of a drawing.
std::vector<Word> wordsOf(const QString& screen, const QString& state) {
  const QJsonObject& drawing = wordsOf(screen);
  // An unknown state belongs to the name of another picture, which has no words.
  if (!state.isEmpty() && !drawing[u"states"].toArray().contains(state)) {
    return {};
  }
  std::vector<Word> words;
  const QJsonArray all = drawing[u"words"].toArray();
  for (const auto& each : all) {
    const QJsonObject word = each.toObject();
    // Only the words of controls are seen in the pictures of other states.
    if (state.isEmpty() || word[u"colors"].toObject().contains(state)) {
      words.push_back(wordOf(word, state));
    }
  }
  return words;
}

bool fits(const QFontMetricsF& metrics, const Word& word) {
  if (!word.wraps()) {
    return metrics.horizontalAdvance(word.text) <= word.room.width();
  }
  const QRectF needed = metrics.boundingRect(word.room, word.flags, word.text);
  return needed.width() <= word.room.width() && needed.height() <= word.room.height();
}

// Other languages may need more room: reduces the type size until the words fit.
QFont fittingFont(const QImage& picture, const Typeface& face, const Word& word) {
  QFont font;
  // In half pixels.
  for (int size = qRound(word.size * 2); size >= smallestType * 2; --size) {
    font = face.font(size / 2.0, word.weight);
    if (fits(QFontMetricsF(font, &picture), word)) {
      break;
    }
  }
  return font;
}

void drawWord(QPainter& painter, const QImage& picture, const Typeface& face, const Word& word) {
  painter.setPen(word.color);
  // The original words always fit in the drawing.
  if (word.isOriginal) {
    painter.setFont(face.font(word.size, word.weight));
    painter.drawText(word.room, word.flags, word.text);
    return;
  }
  const QFont font = fittingFont(picture, face, word);
  const QFontMetricsF metrics(font, &picture);
  painter.setFont(font);
  painter.drawText(word.room, word.flags,
                   word.wraps() || fits(metrics, word)
                       ? word.text
                       : metrics.elidedText(word.text, Qt::ElideRight, word.room.width()));
}

// A picture with its words, for a screen of that scale. Runs on any thread.
struct Order {
  QString path;
  qreal ratio;
  std::vector<Word> words;
  Typeface face;

  Picture make() const {
    Picture picture = readScaled(path, ratio);
    if (!picture.image.isNull() && !words.empty()) {
      QPainter painter(&picture.image);
      painter.setRenderHint(QPainter::TextAntialiasing);
      for (const Word& word : words) {
        drawWord(painter, picture.image, face, word);
      }
    }
    return picture;
  }
};

// Names the picture of a file: the state is the part behind the first "_", if there is one.
struct PictureName {
  QString path;
  QString screen;
  QString state;

  explicit PictureName(const QString& fileName) : path(pathOf(fileName)) {
    const QString stem = QFileInfo(fileName).completeBaseName();
    const qsizetype underscore = stem.indexOf(u'_');
    screen = stem.left(underscore < 0 ? stem.size() : underscore);
    state = underscore < 0 ? QString() : stem.mid(underscore + 1);
  }

  Order order(qreal ratio) const { return {path, ratio, wordsOf(screen, state), typeface()}; }
};

// A picture that is being made ahead is found by its path and its scale.
struct Ahead {
  std::future<Picture> picture;
  std::string language;
};

std::map<QString, Ahead>& prefetched() {
  static std::map<QString, Ahead> pictures;
  return pictures;
}

QString prefetchKey(const QString& path, qreal ratio) {
  return path + u'@' + QString::number(ratio);
}

// The thread that makes them.
std::future<void>& maker() {
  static std::future<void> running;
  return running;
}

void awaitMaker() {
  if (maker().valid()) {
    maker().wait();
  }
}

std::string languageNow() {
  return TooltipManager::shareTooltipManager().languageCode();
}

Picture bring(const PictureName& name, qreal ratio) {
  if (auto found = prefetched().extract(prefetchKey(name.path, ratio))) {
    Ahead& ahead = found.mapped();
    // No installed font may have the letters of the user's language.
    if (ahead.language == languageNow()) {
      return ahead.picture.get();
    }
  }
  return name.order(ratio).make();
}

}  // namespace

LXImage pictures::load(const QString& fileName) {
  const PictureName name(fileName);
  if (fileName.isEmpty() || !QFileInfo::exists(name.path)) {
    return {};
  }
  return LXImage([name](qreal ratio) {
    Picture picture = bring(name, ratio);
    return LXImage::Loaded{QPixmap::fromImage(std::move(picture.image)), picture.size};
  });
}

void pictures::prefetch(const QStringList& fileNames) {
  const qreal ratio = qGuiApp->devicePixelRatio();
  std::vector<std::pair<Order, std::promise<Picture>>> orders;
  for (const QString& fileName : fileNames) {
    const PictureName name(fileName);
    orders.emplace_back(name.order(ratio), std::promise<Picture>());
    prefetched()[prefetchKey(name.path, ratio)] = {orders.back().second.get_future(),
                                                   languageNow()};
  }
  // One thread, so that the window keeps a processor for itself.
  // Drawing words needs the application, also when that ends right after its start.
  qRemovePostRoutine(awaitMaker);
  qAddPostRoutine(awaitMaker);
  maker() = std::async(std::launch::async, [orders = std::move(orders)]() mutable {
    for (auto& [order, picture] : orders) {
      picture.set_value(order.make());
    }
  });
}

QFont pictures::font(qreal pixels, int weight) {
  return typeface().font(pixels, weight);
}

void pictures::releaseWords() {
  loadedWords().clear();
}
