// What the demonstration adds to the program: hands for the virtual mouse.

#include <QApplication>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>

#include <gmock/gmock.h>

#include "App/DemoNotificationCenter.h"
#include "App/DemoPanel.h"
#include "Tests/Support/ViewTest.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class Demo : public ViewTest {
 protected:
  void SetUp() override {
    m_mouse = std::make_shared<VirtualMouse>();
    m_panel = std::make_unique<DemoPanel>(
        m_mouse, [this](const LXUserInfo& userInfo) { m_reports.push_back(userInfo); });
    m_panel->show();
  }
  void press(const char* name) {
    m_panel->findChild<QPushButton*>(QString::fromLatin1(name))->click();
  }
  bool isUsable(const char* name) const {
    return m_panel->findChild<QPushButton*>(QString::fromLatin1(name))->isEnabled();
  }
  std::string shown() const {
    return m_panel->findChild<QPlainTextEdit*>()->toPlainText().toStdString();
  }

  std::shared_ptr<VirtualMouse> m_mouse;
  std::unique_ptr<DemoPanel> m_panel;
  std::vector<LXUserInfo> m_reports;
};

}  // namespace

TEST_F(Demo, PullsThePlugAndPutsItBack) {
  EXPECT_FALSE(isUsable("plugBtn"));
  press("unplugBtn");
  EXPECT_FALSE(m_mouse->isAttached());
  EXPECT_FALSE(isUsable("unplugBtn"));
  EXPECT_FALSE(isUsable("slotBtn"));
  EXPECT_THAT(shown(), HasSubstr("Unplugged"));
  press("plugBtn");
  EXPECT_TRUE(m_mouse->isAttached());
  EXPECT_THAT(shown(), HasSubstr("Plugged in"));
  EXPECT_THAT(m_reports, ElementsAre(LXUserInfo{{"type", 100}, {"value", 0}},
                                     LXUserInfo{{"type", 101}, {"value", 0}}));
}

TEST_F(Demo, TheMousesButtonGoesThroughTheSlotsAndRound) {
  for (int i = 0; i < 10; ++i) {
    press("slotBtn");
    EXPECT_EQ(m_mouse->activeSlot(), (i + 1) % 10);
    EXPECT_EQ(m_panel->findChild<QComboBox*>()->currentIndex(), (i + 1) % 10);
    EXPECT_EQ(m_reports.back(), (LXUserInfo{{"type", 1}, {"value", (i + 1) % 10}}));
  }
}

TEST_F(Demo, ShowsWhatASlotHolds) {
  EXPECT_THAT(shown(), HasSubstr("Name: Profile#1"));
  m_panel->findChild<QComboBox*>()->setCurrentIndex(1);
  EXPECT_THAT(shown(), HasSubstr("Name: Profile#2"));
  const auto image = m_mouse->imageReport(1);
  EXPECT_THAT(m_panel->describe(1).toStdString(), HasSubstr(hexOf(image.first(1))));
  m_mouse->clearSlot(1);
  QCoreApplication::processEvents();
  EXPECT_THAT(m_panel->describe(1).toStdString(), testing::Not(HasSubstr("Profile#2")));
}

TEST_F(Demo, ItsReportsReachTheProgramWithoutABus) {
  DemoNotificationCenter center;
  std::vector<LXUserInfo> heard;
  center.addObserver("NerinDevStatus", [&](const std::string&, const LXUserInfo& userInfo) {
    heard.push_back(userInfo);
  });
  center.report("NerinDevStatus", {{"type", 101}});
  center.report("Another", {{"type", 100}});
  center.removeObserver("NerinDevStatus");
  center.report("NerinDevStatus", {{"type", 100}});
  EXPECT_THAT(heard, ElementsAre(LXUserInfo{{"type", 101}}));
}
