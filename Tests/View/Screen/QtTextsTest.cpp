// The toolkit's own words in the language of the catalogue.

#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <set>

#include <gmock/gmock.h>

#include "Action/Texts/TooltipManager.h"
#include "Tests/Support/ViewTest.h"
#include "View/Screen/QtTexts.h"

namespace {

using testing::HasSubstr;

// What the toolkit asks for, by context and English text.
class Questions : public QTranslator {
 public:
  using Question = std::pair<std::string, std::string>;

  Questions() { QCoreApplication::installTranslator(this); }
  ~Questions() override { QCoreApplication::removeTranslator(this); }
  Questions(const Questions&) = delete;
  Questions& operator=(const Questions&) = delete;

  const std::set<Question>& all() const { return m_all; }
  bool isEmpty() const override { return false; }
  QString translate(const char* context, const char* sourceText, const char* /*disambiguation*/,
                    int /*n*/) const override {
    m_all.emplace(context, sourceText);
    return {};
  }

 private:
  mutable std::set<Question> m_all;
};

class QtWords : public ViewTest, public testing::WithParamInterface<const char*> {
 protected:
  void TearDown() override { setLanguage("US"); }
  static void setLanguage(const char* name) {
    TooltipManager::shareTooltipManager().setLanByname(name);
  }
  static std::string of(const char* context, const char* english) {
    return QCoreApplication::translate(context, english).toStdString();
  }
  // The words of a field's menu, and of the panel for files.
  static std::set<Questions::Question> asked() {
    const Questions questions;
    QLineEdit field;
    const std::unique_ptr<QMenu> menu(field.createStandardContextMenu());
    for (const auto mode : {QFileDialog::AcceptOpen, QFileDialog::AcceptSave}) {
      QFileDialog panel;
      panel.setOption(QFileDialog::DontUseNativeDialog);
      panel.setAcceptMode(mode);
      panel.show();
      process();
    }
    return questions.all();
  }
};

INSTANTIATE_TEST_SUITE_P(Translations, QtWords,
                         testing::Values("German", "French", "Spanish", "Italian",
                                         "Portuguese(Brazil)", "Russian", "Japanese", "Korean",
                                         "TC", "SC", "Czech", "Greek", "Polish", "Turkish"));

}  // namespace

TEST_F(QtWords, FollowTheLanguageOfTheCatalogue) {
  const QtTexts words;
  EXPECT_EQ(of("QLineEdit", "&Undo"), "&Undo");
  setLanguage("German");
  EXPECT_THAT(of("QLineEdit", "&Undo"), HasSubstr("ckg"));
  setLanguage("Greek");
  EXPECT_EQ(of("QLineEdit", "Select All"), "Επιλογή όλων");
  setLanguage("US");
  EXPECT_EQ(of("QLineEdit", "Select All"), "Select All");
}

TEST_F(QtWords, AreEnglishAgainAfterwards) {
  setLanguage("German");
  { const QtTexts words; }
  EXPECT_EQ(of("QLineEdit", "&Undo"), "&Undo");
}

TEST_P(QtWords, AreThereForEachFieldAndPanel) {
  const auto questions = asked();
  EXPECT_TRUE(questions.contains({"QFileDialog", "Look in:"}));
  EXPECT_TRUE(questions.contains({"QLineEdit", "Select All"}));
  const QtTexts words;
  setLanguage(GetParam());
  for (const auto& [context, english] : questions) {
    // Names of keys are mostly the same. For the words of the type column and of the sidebar, the
    // toolkit's own translations have nothing but in German.
    if (context == "QShortcut" || context == "QGuiApplication" || english.starts_with("Alt+") ||
        english == "OK" || english == "Sidebar" || context == "QAbstractFileIconProvider") {
      continue;
    }
    const std::string translated =
        words.translate(context.c_str(), english.c_str(), nullptr, -1).toStdString();
    EXPECT_FALSE(translated.empty()) << context << ": " << english;
  }
}
