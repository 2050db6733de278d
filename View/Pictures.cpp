#include "View/Pictures.h"

#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontMetricsF>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <algorithm>
#include <optional>
#include <vector>

#include "Action/TooltipManager.h"
#include "Kit/Core/LXPlatform.h"

namespace {

constexpr qreal pointsPerInch = 72;
// Smaller than this nobody reads; then the words are cut short.
constexpr qreal smallestType = 8;

QString pathOf(const QString& fileName) {
  return QString::fromStdString(LXPlatform::current().resourceFolder.string()) + u'/' + fileName;
}

std::optional<QJsonObject>& loadedWords() {
  static std::optional<QJsonObject> words;
  return words;
}

const QJsonObject& allWords() {
  auto& words = loadedWords();
  if (!words) {
    QFile file(pathOf(QStringLiteral("ArtworkWords.json")));
    words = file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                           : QJsonObject();
  }
  return *words;
}

// What a word says in the user's language.
QString textOf(const QJsonObject& word) {
  const QString key = word[u"key"].toString();
  if (!key.isEmpty()) {
    if (const auto text = TooltipManager::shareTooltipManager().getTooltip(key.toStdString())) {
      return QString::fromStdString(*text);
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
  return (name == u"right" ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
}

// Other languages need more room than there may be: the type shrinks until the words fit.
QFont fittingFont(const QPixmap& picture, const QJsonObject& word, const QString& text,
                  const QRectF& room, int flags) {
  const auto weight = word[u"fontWeight"].toInt(QFont::Normal);
  QFont font;
  for (qreal size = word[u"fontSize"].toDouble(); size >= smallestType; size -= 0.5) {
    font = pictures::font(size, weight);
    const QFontMetricsF metrics(font, &picture);
    const QRectF needed = metrics.boundingRect(room, flags, text);
    if (needed.width() <= room.width() && needed.height() <= room.height()) {
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
  const QFont font = fittingFont(picture, word, text, room, flags);
  if (!wraps) {
    text = QFontMetricsF(font, &picture).elidedText(text, Qt::ElideRight, room.width());
  }
  painter.setFont(font);
  painter.setPen(colorOf(word, state));
  painter.drawText(room, flags, text);
}

QPixmap loadNow(const QString& path, const QString& screen, const QString& state) {
  QPixmap picture(path);
  const QJsonArray words = allWords()[screen].toObject()[u"words"].toArray();
  if (picture.isNull() || words.isEmpty()) {
    return picture;
  }
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::TextAntialiasing);
  for (const QJsonValue& word : words) {
    drawWord(painter, picture, word.toObject(), state);
  }
  return picture;
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
  return LXImage([path, screen, state] { return loadNow(path, screen, state); });
}

QFont pictures::font(qreal pixels, int weight) {
  QFont font;
  font.setFamilies({QStringLiteral("Inter"), font.family()});
  // Type sizes are halves of a pixel, which Qt takes only in points.
  font.setPointSizeF(pixels * pointsPerInch / QPixmap(1, 1).logicalDpiY());
  font.setWeight(static_cast<QFont::Weight>(weight));
  return font;
}

void pictures::releaseWords() {
  loadedWords().reset();
}
