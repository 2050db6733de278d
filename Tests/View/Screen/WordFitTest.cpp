// The words that are drawn into the pictures, measured in every language.

#include <QFontMetricsF>
#include <QPixmap>

#include "Action/Texts/TooltipManager.h"
#include "Tests/Support/ViewTest.h"
#include "Tests/View/Screen/DrawnWords.h"
#include "View/Screen/Pictures.h"

namespace {

// What is longer is drawn smaller, and cut in the end.
bool fitsAtItsOwnSize(const QJsonObject& word, const QString& text) {
  const QPixmap picture(1, 1);
  const QFontMetricsF metrics(
      pictures::font(word[u"fontSize"].toDouble(), word[u"fontWeight"].toInt()), &picture);
  const QRectF room(0, 0, word[u"width"].toDouble(), word[u"height"].toDouble());
  if (!word[u"wrap"].toBool()) {
    return metrics.horizontalAdvance(text) <= room.width();
  }
  const QRectF needed = metrics.boundingRect(room, Qt::TextWordWrap, text);
  return needed.width() <= room.width() && needed.height() <= room.height();
}

class WordFit : public ViewTest, public testing::WithParamInterface<const char*> {
 protected:
  void TearDown() override { texts().setLanByname("US"); }
  static TooltipManager& texts() { return TooltipManager::shareTooltipManager(); }
};

INSTANTIATE_TEST_SUITE_P(Languages, WordFit,
                         testing::Values("US", "German", "French", "Spanish", "Italian",
                                         "Portuguese(Brazil)", "Russian", "Japanese", "Korean",
                                         "TC", "SC", "Czech", "Greek", "Polish", "Turkish"));

}  // namespace

TEST_P(WordFit, EveryWordOfThePicturesFitsAtItsOwnSize) {
  texts().setLanByname(GetParam());
  int measured = 0;
  for (const auto& [screen, words] : drawnWords()) {
    for (const auto& each : words) {
      const QJsonObject word = each.toObject();
      const std::string key = word[u"key"].toString().toStdString();
      if (key.empty()) {
        continue;
      }
      const auto text = texts().getTooltip(key);
      ASSERT_TRUE(text) << key;
      EXPECT_TRUE(fitsAtItsOwnSize(word, QString::fromStdString(*text))) << screen << ": " << *text;
      ++measured;
    }
  }
  EXPECT_GT(measured, 50);
}
