#include "View/Screen/FullStops.h"

namespace {

constexpr QStringView endsOfSentences = u".!?";

// A small letter goes on with the sentence, as behind an ordinal number: "2. raporu".
bool hasSeveralSentences(const QString& text) {
  for (qsizetype at = 0; at + 2 < text.size(); ++at) {
    if (endsOfSentences.contains(text[at]) && text[at + 1].isSpace() && !text[at + 2].isLower()) {
      return true;
    }
  }
  return false;
}

bool hasMarkAtItsEnd(const QString& text) {
  return text.isEmpty() ||
         (text.back().isPunct() && !QStringView(u"%)”»\"'").contains(text.back()));
}

// Japanese and Chinese have a full stop of their own.
bool isEastAsian(QChar letter) {
  const QChar::Script script = letter.script();
  return script == QChar::Script_Han || script == QChar::Script_Hiragana ||
         script == QChar::Script_Katakana;
}

}  // namespace

QString fullstops::completed(QString text) {
  return hasSeveralSentences(text) ? sentence(std::move(text)) : text;
}

QString fullstops::sentence(QString text) {
  if (!hasMarkAtItsEnd(text)) {
    text += isEastAsian(text.back()) ? u'\u3002' : u'.';
  }
  return text;
}
