// F1 opens the help at the chapter of the window in front.

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>

#include "Action/Texts/TooltipManager.h"
#include "Tests/Support/ViewTest.h"
#include "View/Main/ChangesList.h"
#include "View/Windows/HelpDocument.h"
#include "View/Windows/PlainMessage.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/ProgramPanel.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class HelpOfAWindow : public ViewTest {
 protected:
  HelpOfAWindow() { start(); }

  static std::string textOf(const std::filesystem::path& file) {
    std::stringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
  }

  // The chapter that F1 in the widget has opened, which the document has; empty for none.
  std::string chapterOf(QWidget& widget) {
    m_opened.clear();
    if (widget.isWindow() && (widget.windowFlags() & Qt::WindowType_Mask) != Qt::Popup) {
      widget.activateWindow();
      EXPECT_TRUE(QTest::qWaitForWindowActive(&widget));
    }
    process();
    QTest::keyClick(&widget, Qt::Key_F1);
    process();
    if (m_opened.size() != 1) {
      return {};
    }
    const std::string begin = "file://" + helpdocument::path().string() + "#";
    EXPECT_TRUE(m_opened[0].starts_with(begin)) << m_opened[0];
    const std::string chapter = m_opened[0].substr(begin.size());
    EXPECT_THAT(textOf(helpdocument::path()), HasSubstr(" id=\"" + chapter + "\""));
    return chapter;
  }

  std::string chapterOfChild(const char* opener) {
    click(opener);
    const std::string chapter = chapterOf(*child());
    child()->close();
    process();
    return chapter;
  }

  static std::string languageOf(const std::string& file) {
    const auto begin = file.rfind('_') + 1;
    return file.substr(begin, file.rfind('.') - begin);
  }
};

TEST_F(HelpOfAWindow, OpensAtItsStartByTheButton) {
  click("helpBtn");
  EXPECT_THAT(m_opened, ElementsAre(helpdocument::path().string()));
}

TEST_F(HelpOfAWindow, OpensAtTheChapterOfTheWindow) {
  EXPECT_EQ(chapterOf(window()), "main");
  EXPECT_EQ(chapterOfChild("MacroSettingBtn"), "macros");
  EXPECT_EQ(chapterOfChild("preformanceBtn"), "dpi");
  EXPECT_EQ(chapterOfChild("lightOptionBtn"), "led");
  EXPECT_EQ(chapterOf(window()), "main");
}

TEST_F(HelpOfAWindow, OpensAtThePartOfTheAssignment) {
  constexpr std::size_t rightFrontButton2 = 8;
  const std::vector<std::pair<std::uint32_t, std::string>> parts{
      {1, "assign"},     {2, "assign-macro"},   {3, "assign-key"},
      {4, "assign-dpi"}, {5, "assign-program"}, {6, "assign"}};
  for (const auto& [kind, chapter] : parts) {
    editState->edit().btnInfo[rightFrontButton2].btnType = kind;
    EXPECT_EQ(chapterOfChild("rightBtn2"), chapter) << kind;
  }
}

TEST_F(HelpOfAWindow, OpensAboutThePanelInFront) {
  click("profileNewBtn");
  auto& changes = *view().findChild<ChangesList*>(QStringLiteral("changesList"));
  changes.openAbove({600, 600});
  EXPECT_EQ(chapterOf(changes), "changes");
  changes.hide();
  ProgramPanel panel({}, {}, nullptr);
  panel.show();
  EXPECT_EQ(chapterOf(panel), "programs");
  panel.hide();
  click("MacroSettingBtn");
  for (const auto& [name, chapter] :
       {std::pair{"macroTools", "macro-tools"}, std::pair{"macroTest", "macro-test"}}) {
    auto& tools = *child()->findChild<QWidget*>(QString::fromLatin1(name));
    tools.show();
    EXPECT_EQ(chapterOf(tools), chapter);
    tools.hide();
  }
}

TEST_F(HelpOfAWindow, OpensAboutAQuestionThatStaysOpen) {
  std::string chapter;
  onDialog([&](LXNoTitleWindow& dialog, PopDialogView& /*content*/) {
    chapter = chapterOf(dialog);
    EXPECT_TRUE(dialog.isVisible());
    dialog.close();
  });
  EXPECT_FALSE(NerinAction::showPopView("WarningReset", true));
  EXPECT_EQ(chapter, "messages");

  chapter.clear();
  QTimer::singleShot(0, qApp, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    chapter = chapterOf(*box);
    EXPECT_TRUE(box->isVisible());
    box->reject();
  });
  EXPECT_FALSE(plainmessage::ask("Replace it?"));
  EXPECT_EQ(chapter, "messages");
}

TEST_F(HelpOfAWindow, GivesWayToARecording) {
  click("MacroSettingBtn");
  auto* editor = child();
  editor->findChild<LXButton*>(QStringLiteral("newMacroBtn"))->click();
  editor->findChild<LXButton*>(QStringLiteral("recordBtn"))->click();
  EXPECT_EQ(chapterOf(*editor), "");
  editor->findChild<LXButton*>(QStringLiteral("stopBtn"))->click();
  EXPECT_EQ(chapterOf(*editor), "macros");
}

TEST_F(HelpOfAWindow, IsThatOfTheUsersLanguageOrElseTheEnglishOne) {
  const auto folder = std::filesystem::path(NERIN_RESOURCES) / "Help";
  EXPECT_EQ(helpdocument::path(), folder / "UserInterfaceSetupGuide_en.html");
  for (const char* system : {"de_AT.UTF-8", "pt_BR", "zh_TW", "zh-CN", "cs", "fr", "el", "it", "ja",
                             "ko", "pl", "ru", "es", "tr"}) {
    setPreferredLanguage(system);
    TooltipManager::releaseTooltipManager();
    const std::string own =
        "UserInterfaceSetupGuide_" + TooltipManager::shareTooltipManager().languageCode() + ".html";
    EXPECT_EQ(helpdocument::path().filename().string(),
              std::filesystem::exists(folder / own) ? own : "UserInterfaceSetupGuide_en.html");
    // The page is in the language that its name says.
    EXPECT_THAT(
        textOf(helpdocument::path()),
        HasSubstr("<html lang=\"" + languageOf(helpdocument::path().filename().string()) + "\">"));
  }
  setPreferredLanguage("nl");
  TooltipManager::releaseTooltipManager();
  EXPECT_EQ(helpdocument::path(), folder / "UserInterfaceSetupGuide_en.html");
}

TEST_F(HelpOfAWindow, FallsBackWhereALanguageHasNoFile) {
  const auto folder = home() / "resources";
  std::filesystem::create_directories(folder / "Help");
  LXPlatform platform = LXPlatform::current();
  platform.preferredLanguage = "de";
  TooltipManager::releaseTooltipManager();
  ASSERT_EQ(TooltipManager::shareTooltipManager().languageCode(), "en");
  LXPlatform::install(platform);
  TooltipManager::releaseTooltipManager();
  ASSERT_EQ(TooltipManager::shareTooltipManager().languageCode(), "de");
  platform.resourceFolder = folder;
  LXPlatform::install(platform);
  EXPECT_EQ(helpdocument::path(), folder / "Help" / "UserInterfaceSetupGuide_en.html");
  std::ofstream(folder / "Help" / "UserInterfaceSetupGuide_de.html") << "Hilfe";
  EXPECT_EQ(helpdocument::path(), folder / "Help" / "UserInterfaceSetupGuide_de.html");
}

}  // namespace
