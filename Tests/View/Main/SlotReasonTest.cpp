// Why the mouse has its slot, as the background service tells it, in the footer.

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <thread>

#include <gmock/gmock.h>

#include "Action/Service/SlotReason.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/StatusLine.h"

namespace {

// Tells reasons on another thread, as the bus does.
class ReasonCenter final : public LXNotificationCenter {
 public:
  void postNotificationName(const std::string& name, const std::string&,
                            const std::optional<LXUserInfo>&) override {
    posted.push_back(name);
  }
  void addObserver(const std::string& name, Observer observer) override {
    observers[name] = std::move(observer);
  }
  void removeObserver(const std::string& name) override { observers.erase(name); }

  void tell(const SlotReason& reason) {
    std::thread([&] {
      observers.at("NerinSlotReason")(reason.program, slotreason::userInfoOf(reason));
    }).join();
  }

  std::map<std::string, Observer> observers;
  std::vector<std::string> posted;
};

class SlotReasonInFooter : public ViewTest {
 protected:
  void SetUp() override {
    LXPlatform platform = LXPlatform::current();
    platform.notificationCenter = center;
    platform.watchService = [this](std::function<void(bool)> changed) {
      service = std::move(changed);
      return std::shared_ptr<void>(
          this, [](void* test) { static_cast<SlotReasonInFooter*>(test)->service = nullptr; });
    };
    LXPlatform::install(platform);
    start();
  }
  void tell(const SlotReason& reason) {
    center->tell(reason);
    process();
  }
  std::string shown() {
    return view().findChild<QLabel*>(QStringLiteral("statusText"))->text().toStdString();
  }

  std::shared_ptr<ReasonCenter> center = std::make_shared<ReasonCenter>();
  // Tells the window that the service came or went; empty while it does not want to know.
  std::function<void(bool isThere)> service;
  const SlotReason blender{SlotReason::InFront, 2, 0, "Blender"};
};

TEST_F(SlotReasonInFooter, TheServiceIsAskedAtTheStart) {
  EXPECT_THAT(center->posted, testing::Contains("NerinSlotReasonAsked"));
  EXPECT_EQ(shown(), "");
}

TEST_F(SlotReasonInFooter, IsShownWhileNothingElseIsSaid) {
  tell(blender);
  EXPECT_EQ(shown(), "Slot 3, because Blender is in front");
  EXPECT_EQ(status(), "") << "nobody said it";
  statusline::say(QStringLiteral("Something failed"), StatusLine::Tone::Failure);
  EXPECT_EQ(shown(), "Something failed");
  tell({SlotReason::ByHand, 0, 0, ""});
  EXPECT_EQ(shown(), "Something failed");
  statusline::clear();
  EXPECT_EQ(shown(), "Slot 1, the last one chosen by hand");
}

TEST_F(SlotReasonInFooter, NothingIsShownWhereNoProgramIsConcerned) {
  for (const auto kind : {SlotReason::NoMouse, SlotReason::NothingLinked, SlotReason::SwitchedOff,
                          SlotReason::Locked}) {
    tell(blender);
    ASSERT_NE(shown(), "");
    tell({kind, 2, 0, ""});
    EXPECT_EQ(shown(), "") << kind;
  }
}

TEST_F(SlotReasonInFooter, SpeaksTheLanguageOfTheWindow) {
  tell(blender);
  view().changeLanguage("de");
  EXPECT_EQ(shown(), "Slot 3, weil Blender im Vordergrund ist");
}

TEST_F(SlotReasonInFooter, WhatIsNoReasonIsLeftOut) {
  tell(blender);
  center->observers.at("NerinSlotReason")("?", {{"kind", 99}, {"slot", 0}, {"otherSlot", 0}});
  process();
  EXPECT_EQ(shown(), "Slot 3, because Blender is in front");
}

TEST_F(SlotReasonInFooter, IsTakenAwayWhenTheServiceGoesWithoutAWord) {
  tell(blender);
  service(false);
  EXPECT_EQ(shown(), "");
  view().changeLanguage("de");
  EXPECT_EQ(shown(), "") << "and is not remembered";
}

TEST_F(SlotReasonInFooter, AServiceThatIsBackIsAskedAnew) {
  tell(blender);
  service(false);
  center->posted.clear();
  service(true);
  EXPECT_THAT(center->posted, testing::Contains("NerinSlotReasonAsked"));
  EXPECT_EQ(shown(), "");
  tell({SlotReason::ByHand, 0, 0, ""});
  EXPECT_EQ(shown(), "Slot 1, the last one chosen by hand");
}

TEST_F(SlotReasonInFooter, WhatIsSaidStaysWhenTheServiceGoes) {
  tell(blender);
  statusline::say(QStringLiteral("Something failed"), StatusLine::Tone::Failure);
  service(false);
  EXPECT_EQ(shown(), "Something failed");
  statusline::clear();
  EXPECT_EQ(shown(), "");
}

TEST_F(SlotReasonInFooter, NothingArrivesAfterTheEnd) {
  endProgram();
  destroyWindow();
  EXPECT_FALSE(center->observers.contains("NerinSlotReason"));
  EXPECT_FALSE(service);
}

// A sentence in the language, with the longest names that fit a desktop entry in practice.
TEST_F(SlotReasonInFooter, EverySentenceFitsTheLineInEveryLanguage) {
  const std::string program = "Visual Studio Code Insiders";
  auto* label = view().findChild<QLabel*>(QStringLiteral("statusText"));
  for (const char* code : {"en", "de", "fr", "es", "it", "pt-BR", "ru", "ja", "ko", "zh-Hant",
                           "zh-Hans", "cs", "el", "pl", "tr"}) {
    view().changeLanguage(code);
    for (const auto kind :
         {SlotReason::InFront, SlotReason::Running, SlotReason::ByHand, SlotReason::ByHandMeanwhile,
          SlotReason::WindowHasEdits, SlotReason::Untold, SlotReason::InsteadRunning,
          SlotReason::TriedAgain}) {
      tell({kind, 9, 8, program});
      EXPECT_LE(QFontMetrics(label->font())
                    .boundingRect(label->rect(), Qt::TextWordWrap | Qt::AlignLeft, label->text())
                    .height(),
                label->height())
          << code << ": " << shown();
    }
  }
}

}  // namespace
