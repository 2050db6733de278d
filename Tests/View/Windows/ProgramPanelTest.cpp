// Choosing a program by its name.

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

#include "Tests/Support/ViewTest.h"
#include "View/Windows/ProgramPanel.h"

namespace {

using testing::ElementsAre;

class Programs : public ViewTest {
 protected:
  Programs()
      : m_panel({{"Blender", "/apps/blender.desktop", {}, false},
                 {"Chess", "/apps/chess.desktop", {}, true},
                 {"Files", "/apps/files.desktop", {}, false},
                 {"Terminal", "/apps/term.desktop", {}, false}},
                {"/apps/term.desktop"}, nullptr) {
    m_panel.show();
  }

  std::vector<std::string> shown() {
    std::vector<std::string> names;
    for (int row = 0; row < list().count(); ++row) {
      names.push_back(list().item(row)->text().toStdString());
    }
    return names;
  }
  QListWidget& list() { return *m_panel.findChild<QListWidget*>(); }
  QLineEdit& search() { return *m_panel.findChild<QLineEdit*>(); }
  QPushButton& panelButton(const char* name) {
    return *m_panel.findChild<QPushButton*>(QString::fromLatin1(name));
  }

  ProgramPanel m_panel;
};

TEST_F(Programs, ThoseInUseComeFirstThenTheRunningOnes) {
  EXPECT_THAT(shown(), ElementsAre("Terminal", "Chess", "Blender", "Files"));
  EXPECT_EQ(list().currentRow(), 0);
}

TEST_F(Programs, TypingFindsAProgramAndReturnTakesIt) {
  QTest::keyClicks(&search(), QStringLiteral("le"));
  EXPECT_THAT(shown(), ElementsAre("Blender", "Files"));
  QTest::keyClick(&search(), Qt::Key_Down);
  QTest::keyClick(&search(), Qt::Key_Return);
  EXPECT_EQ(m_panel.result(), QDialog::Accepted);
  EXPECT_EQ(m_panel.chosen(), "/apps/files.desktop");
}

TEST_F(Programs, WithoutAMatchNothingCanBeChosen) {
  QTest::keyClicks(&search(), QStringLiteral("no such"));
  EXPECT_THAT(shown(), testing::IsEmpty());
  EXPECT_FALSE(panelButton("chooseBtn").isEnabled());
  QTest::keyClick(&search(), Qt::Key_Return);
  EXPECT_TRUE(m_panel.isVisible());
  EXPECT_EQ(m_panel.chosen(), "");
}

TEST_F(Programs, ADoubleClickChooses) {
  const QRect second = list().visualItemRect(list().item(1));
  QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, second.center());
  QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, second.center());
  EXPECT_EQ(m_panel.chosen(), "/apps/chess.desktop");
}

TEST_F(Programs, AnotherFileIsOneClickOrOneKeyAway) {
  panelButton("otherBtn").click();
  EXPECT_TRUE(m_panel.wantsOtherFile());
  EXPECT_EQ(m_panel.chosen(), "");
}

TEST_F(Programs, EscapeChoosesNothing) {
  QTest::keyClick(&m_panel, Qt::Key_Escape);
  EXPECT_FALSE(m_panel.isVisible());
  EXPECT_EQ(m_panel.chosen(), "");
}

TEST_F(Programs, TheWindowShowsTheNameAndKeepsThePath) {
  start();
  writeText(home() / "org.blender.Blender.desktop",
            "[Desktop Entry]\nType=Application\nName=Blender\nExec=true\n");
  m_chosen = (home() / "org.blender.Blender.desktop").string();
  click("linkProBtn");
  EXPECT_EQ(button("linkProBtn").title(), QStringLiteral("Blender"));
  EXPECT_EQ(library().currActivePath(), (home() / "org.blender.Blender.desktop").string());
  std::filesystem::remove(home() / "org.blender.Blender.desktop");
  view().fillSettingData();
  EXPECT_EQ(button("linkProBtn").title(),
            QStringLiteral("org.blender.Blender (not installed any more)"));
}

}  // namespace
