#include "View/Lights/ColorClipboard.h"

#include <QClipboard>
#include <QColor>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QStringList>

QString colorclipboard::codeOf(const LightColor& color) {
  return color.shown().name().toUpper();
}

void colorclipboard::copy(const std::vector<LightColor>& colors) {
  QStringList codes;
  codes.reserve(static_cast<qsizetype>(colors.size()));
  for (const LightColor& color : colors) {
    codes.append(codeOf(color));
  }
  QGuiApplication::clipboard()->setText(codes.join(u' '));
}

std::vector<LightColor> colorclipboard::colors() {
  // Anything longer is another text, and need not be searched.
  constexpr qsizetype longest = 100;
  const QString text = QGuiApplication::clipboard()->text();
  if (text.size() > longest) {
    return {};
  }
  static const QRegularExpression code(QStringLiteral("^#?([0-9A-Fa-f]{6})$"));
  const QStringList words = text.simplified().split(u' ', Qt::SkipEmptyParts);
  std::vector<LightColor> colors;
  colors.reserve(static_cast<std::size_t>(words.size()));
  for (const QString& word : words) {
    const auto match = code.match(word);
    if (!match.hasMatch()) {
      return {};
    }
    colors.push_back(LightColor::of(QColor(u'#' + match.captured(1))));
  }
  return colors;
}
