// Pictures that a thread makes ahead while the windows are created.

#include <gmock/gmock.h>

#include "Action/Texts/TooltipManager.h"
#include "ArtworkFrames.h"
#include "Tests/Support/ViewTest.h"
#include "View/Screen/Pictures.h"

namespace {

class MadeAhead : public ViewTest {
 protected:
  void TearDown() override { texts().setLanByname("US"); }
  static TooltipManager& texts() { return TooltipManager::shareTooltipManager(); }
  static QStringList names() {
    QStringList all;
    for (const std::string_view name : Artwork::startUpPictures) {
      all += QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())) +
             QStringLiteral(".png");
    }
    return all;
  }
  static QImage image(const QString& name) { return pictures::load(name).pixmap().toImage(); }
};

}  // namespace

TEST_F(MadeAhead, PicturesAreThoseThatAreMadeWhenTheyAreDrawn) {
  for (const char* language : {"US", "German", "Japanese"}) {
    texts().setLanByname(language);
    std::vector<QImage> expected;
    for (const QString& name : names()) {
      expected.push_back(image(name));
    }
    pictures::prefetch(names());
    for (qsizetype i = 0; i < names().size(); ++i) {
      EXPECT_TRUE(image(names()[i]) == expected[static_cast<std::size_t>(i)])
          << language << ": " << names()[i].toStdString();
    }
  }
}

TEST_F(MadeAhead, PicturesInTheWordsOfAnotherLanguageAreMadeAnew) {
  const QString name = QStringLiteral("MainView_Normal.png");
  const QImage english = image(name);
  texts().setLanByname("German");
  const QImage german = image(name);
  ASSERT_FALSE(german == english);
  pictures::prefetch({name});
  texts().setLanByname("US");
  EXPECT_TRUE(image(name) == english);
  texts().setLanByname("German");
  EXPECT_TRUE(image(name) == german) << "what was made ahead is given out once";
}

// The last one: the program ends while they are being made, which must not draw without it.
TEST_F(MadeAhead, TheEndOfTheProgramWaitsForPicturesThatNobodyTook) {
  texts().setLanByname("Japanese");
  pictures::prefetch(names());
  SUCCEED();
}
