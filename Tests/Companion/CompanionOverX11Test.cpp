#include <chrono>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "Action/Edit/DraftFiles.h"
#include "Action/Edit/Drafts.h"
#include "Action/Library/PreferenceKeys.h"
#include "Action/NerinAction.h"
#include "Kit/Core/PreferenceFile.h"
#include "Tests/Companion/PrivateDisplay.h"
#include "Tests/Companion/RunningCompanion.h"
#include "Tests/Support/Scratch.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

// The companion on a desktop of its own with a virtual mouse. Each test needs its own process.

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class CompanionOverX11 : public RunningCompanion {
 protected:
  CompanionOverX11() {
    use({.requester = std::make_shared<VirtualDeviceRequester>(mouse),
         .udevControl = {},
         .memoryFile = mouse->memoryFile(),
         // As the mouse needs it: the times are measured.
         .sleep = [](std::chrono::microseconds time) { std::this_thread::sleep_for(time); }});
  }

  // A desktop entry for windows of that class, linked to the slot (from 0) as the window does it.
  void link(int slot, const std::string& windowClass, bool isActive = true) {
    const auto entry = m_files / (windowClass + ".desktop");
    std::ofstream(entry) << "[Desktop Entry]\nName=" << windowClass
                         << "\nStartupWMClass=" << windowClass << "\n";
    ASSERT_TRUE(
        PreferenceFile(NerinAction::preferenceFilePath())
            .setValues(preferencekeys::linkApp, {{preferencekeys::profile(slot), entry.string()},
                                                 {preferencekeys::linkIsActive(slot), isActive}}));
  }

  // The next notification of that name.
  std::string nextOf(const std::string& name) {
    while (const auto message = bus.nextNotification()) {
      if (message->member == name) {
        return message->body;
      }
    }
    return "";
  }
  bool getsSlot(int slot, std::chrono::milliseconds limit = 20s) {
    return loop.runUntil([&] { return mouse->activeSlot() == slot; }, limit);
  }

  PrivateDisplay display;

 private:
  Scratch m_files;

 protected:
  std::shared_ptr<VirtualMouse> mouse = std::make_shared<VirtualMouse>(m_files / "mouse");
};

TEST_F(CompanionOverX11, ALinkedProgramGetsItsSlotAndAnotherOneGivesItBack) {
  link(2, "Blender");
  start();
  const ProgramWindow files("files", "Files");
  wait(500ms);
  EXPECT_EQ(mouse->activeSlot(), 0);
  {
    const ProgramWindow blender("blender", "Blender");
    ASSERT_TRUE(getsSlot(2));
    EXPECT_TRUE(says("Slot 3, because Blender is in front"));
    EXPECT_EQ(nextOf("NerinDevStatus"), "s: {type=i:101 value=i:0}");
    EXPECT_EQ(nextOf("NerinDevStatus"), "s: {type=i:1 value=i:2}");
    EXPECT_EQ(nextOf("NerinSlotReason"), "s:Blender {kind=i:3 otherSlot=i:0 slot=i:2}");
  }
  ProgramWindow other("other", "Other");
  ASSERT_TRUE(getsSlot(0));
  EXPECT_TRUE(says("Slot 1, the last one chosen by hand"));
}

TEST_F(CompanionOverX11, TheSlotComesWithinFourHundredMilliseconds) {
  link(2, "Blender");
  start();
  const ProgramWindow files("files", "Files");
  wait(500ms);
  const auto begin = Clock::now();
  const ProgramWindow blender("blender", "Blender");
  ASSERT_TRUE(getsSlot(2));
  const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
  RecordProperty("milliseconds", static_cast<int>(time.count()));
  EXPECT_GE(time, 200ms);
  EXPECT_LT(time, 400ms + 600ms);  // other tests run beside this one
}

TEST_F(CompanionOverX11, ALinkThatIsSwitchedOffDoesNothing) {
  link(2, "Blender", false);
  start();
  const ProgramWindow blender("blender", "Blender");
  wait(1s);
  EXPECT_EQ(mouse->activeSlot(), 0);
}

TEST_F(CompanionOverX11, NothingFollowsProgramsWhileThisIsSwitchedOff) {
  PreferenceFile preferences(NerinAction::preferenceFilePath());
  ASSERT_TRUE(preferences.setValue(preferencekeys::switchSlots, false));
  link(2, "Blender");
  start();
  const ProgramWindow blender("blender", "Blender");
  wait(1s);
  EXPECT_EQ(mouse->activeSlot(), 0);
  EXPECT_TRUE(says("Slot 1: slots do not follow programs, because this is switched off"));
  ASSERT_TRUE(preferences.setValue(preferencekeys::switchSlots, true));
  EXPECT_TRUE(getsSlot(2));
}

TEST_F(CompanionOverX11, AWindowThatOpensLaterIsToldWhy) {
  link(2, "Blender");
  start();
  const ProgramWindow blender("blender", "Blender");
  ASSERT_TRUE(says("Slot 3, because Blender is in front"));
  const auto window = BusConnection::open(loop.handle(), BusConnection::Kind::Session, [] {});
  std::optional<SlotReason> told;
  window->addObserver(slotreason::notification,
                      [&](const std::string& object, const LXUserInfo& userInfo) {
                        told = slotreason::reasonOf(object, userInfo);
                      });
  wait(300ms);
  EXPECT_FALSE(told);
  window->postNotificationName(slotreason::question, "", std::nullopt);
  EXPECT_TRUE(loop.runUntil([&] { return told.has_value(); }, 20s));
  EXPECT_EQ(told, (SlotReason{SlotReason::InFront, 2, 0, "Blender"}));
}

TEST_F(CompanionOverX11, ALinkMadeMeanwhileActsAtOnce) {
  link(7, "Nobody");
  start();
  const ProgramWindow blender("blender", "Blender");
  wait(1s);
  ASSERT_EQ(mouse->activeSlot(), 0);
  link(2, "Blender");
  EXPECT_TRUE(getsSlot(2));
}

TEST_F(CompanionOverX11, WaitsUntilTheWindowHasNoEdits) {
  link(2, "Blender");
  start();
  // Somebody is the window.
  const auto window = BusConnection::open(loop.handle(), BusConnection::Kind::Session, [] {});
  window->requestName("com.corvex.NerinOption", [](std::optional<bool>) {});
  ASSERT_TRUE(draftfiles::write("slot-1.xml", documentOf(NerinAction::currentDraft(0))));
  ASSERT_TRUE(NerinAction::isAnyDraftOnDisk());
  const ProgramWindow blender("blender", "Blender");
  ASSERT_TRUE(
      says("Slot 1: slots do not follow programs while the window has edits that are not "
           "applied"));
  wait(1s);
  EXPECT_EQ(mouse->activeSlot(), 0);
  draftfiles::remove("slot-1.xml");
  EXPECT_TRUE(getsSlot(2));
}

TEST_F(CompanionOverX11, AskingAVirtualMouseIsNoReasonToAskItAgain) {
  link(2, "Blender");
  start();
  wait(1s);
  mouse->clearTranscript();
  wait(1500ms);
  EXPECT_TRUE(mouse->transcript().empty());
}

TEST_F(CompanionOverX11, APressOnAVirtualMouseIsSeenInItsFile) {
  start();
  wait(500ms);
  VirtualMouse(mouse->memoryFile()).pressSlotButton(5);
  EXPECT_TRUE(says("Slot 6, the last one chosen by hand"));
}

TEST_F(CompanionOverX11, SaysWhenTheDesktopIsGone) {
  link(2, "Blender");
  start();
  wait(300ms);
  display.end();
  EXPECT_TRUE(says("Slot 1: this desktop does not tell programs which window is in front"));
}

}  // namespace
