// A macro from its recording to the mouse, and back into the program after a restart.

#include <QMouseEvent>
#include <array>

#include <gmock/gmock.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "MacroPlayer/MacroPlayback.h"
#include "Tests/Kit/Desktop/NativeEvent.h"
#include "Tests/Support/EditorTest.h"
#include "View/Macros/MacroView.h"

using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr int lost = -1;

// A key or button as it is pressed, recorded, read back and played.
struct Control {
  std::uint32_t evdevCode;  // or 0
  Qt::MouseButton button;   // or none
  int keyCode;
  int readBack;
  int played;  // HID usage of the key, number of the button, or `lost`
};

constexpr std::array<Control, 13> controls{{
    {30, Qt::NoButton, 0, 0, 0x04},    // A
    {0, Qt::LeftButton, 120, 0, 1},    // reads back as code 0; only its flag shows the button
    {42, Qt::NoButton, 56, 56, 0xE1},  // Shift
    {54, Qt::NoButton, 60, 60, 0xE5},  // Right Shift
    {0, Qt::RightButton, 121, 0, 2},
    {97, Qt::NoButton, 62, 62, 0xE4},   // Right Control
    {100, Qt::NoButton, 61, 61, 0xE6},  // Right Option
    {125, Qt::NoButton, 55, 55, 0xE3},  // Command
    {63, Qt::NoButton, 96, 96, 0x3E},   // F5
    {0, Qt::MiddleButton, 122, 0, 3},
    {28, Qt::NoButton, 36, 36, 0x28},  // Return
    {13, Qt::NoButton, 24, 0, lost},   // = has no usage, and 0 means A
    {126, Qt::NoButton, 54, 0, lost},  // nor has Right Command
}};

// The gap after each event. The mouse can store all of them.
constexpr std::array<int, 8> gaps{120, 1, 0, 17, 300, 5, 1200, 65535};

class MacroRoad : public EditorTest {
 protected:
  static constexpr int buttonIndex = 14;
  static constexpr int macroSlot = 17;
  static constexpr std::size_t eventCount = 40;

  void SetUp() override {
    endProgram();
    start();
    click("profileNewBtn");
    click("applyBtn");
  }
  using ViewTest::button;

  LXButton& inChild(const char* name) { return partOf<LXButton>(*child()->contentView(), name); }
  MacroView& editor() { return *qobject_cast<MacroView*>(child()->contentView()); }

  void send(const Control& control, bool isDown, std::uint64_t time) {
    auto& table = partOf<RigthMouseTBView>(editor(), "commandTable");
    if (control.evdevCode != 0) {
      QKeyEvent event =
          nativeEvent(isDown ? QEvent::KeyPress : QEvent::KeyRelease, control.evdevCode);
      event.setTimestamp(time);
      QCoreApplication::sendEvent(&table, &event);
      return;
    }
    const QPointF place(20, 20);
    QMouseEvent event(isDown ? QEvent::MouseButtonPress : QEvent::MouseButtonRelease, place,
                      table.viewport()->mapToGlobal(place), control.button,
                      isDown ? control.button : Qt::NoButton, Qt::NoModifier);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(table.viewport(), &event);
  }
  static const Control& controlOf(std::size_t event) {
    return controls.at(event / 2 % controls.size());
  }
  static int gapAfter(std::size_t event) {
    return event + 1 < eventCount ? gaps.at(event % gaps.size()) : 0;
  }
  void record() {
    clickThroughWindow(button("MacroSettingBtn"));
    clickThroughWindow(inChild("newMacroBtn"));
    clickThroughWindow(inChild("recordBtn"));
    std::uint64_t time = 5000;
    for (std::size_t event = 0; event < eventCount; ++event) {
      send(controlOf(event), event % 2 == 0, time);
      time += static_cast<std::uint64_t>(gapAfter(event));
    }
    clickThroughWindow(inChild("stopBtn"));
    clickThroughWindow(inChild("okBtn"));
    process();
  }
  void assign() {
    clickThroughWindow(button("WhellUpBtn"));
    chooseIn(inChild("comSelBtn"), "Macro Key");
    chooseIn(inChild("tkeySelBtn"), "NewMacro_1");
    clickThroughWindow(inChild("okBtn"));
    process();
    clickThroughWindow(button("applyBtn"));
  }
  // The commands in the program.
  static Events commands(int Control::*code) {
    Events events;
    for (std::size_t event = 0; event < eventCount; ++event) {
      const Control& control = controlOf(event);
      int flag = (control.button == Qt::NoButton ? 0 : 3) + static_cast<int>(event % 2);
      // The release of a lost key reads back as another press.
      if (code == &Control::readBack && control.played == lost) {
        flag = MacroKeyInfo::KeyPress;
      }
      events.push_back({control.*code, flag, gapAfter(event)});
    }
    return events;
  }
  static std::vector<PlayedEvent> playable() {
    std::vector<PlayedEvent> events;
    std::chrono::milliseconds time{0};
    for (std::size_t event = 0; event < eventCount; ++event) {
      const Control& control = controlOf(event);
      if (control.played != lost) {
        events.push_back({control.button == Qt::NoButton ? PlayedEvent::Kind::Key
                                                         : PlayedEvent::Kind::MouseButton,
                          static_cast<std::uint8_t>(control.played), event % 2 == 0, time});
      }
      time += std::chrono::milliseconds(gapAfter(event));
    }
    return events;
  }
};

}  // namespace

TEST_F(MacroRoad, WhatWasRecordedIsPlayedByTheMouse) {
  record();
  ASSERT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(1));
  EXPECT_THAT(eventsOf(*NerinAction::macroStore->macroListArrs.front()),
              ElementsAreArray(commands(&Control::keyCode)));
  assign();
  const MacroPlayback first = mouse().playMacro(macroSlot);
  EXPECT_EQ(first.repeat, MacroPlayback::Repeat::Once);
  EXPECT_THAT(first.events, ElementsAreArray(playable()));

  startAgain();
  EXPECT_EQ(button("WhellUpBtn").title(), "NewMacro_1");
  const auto macro = NerinAction::getMacroById(
      static_cast<std::int32_t>(editState->selProfile().btnInfo[buttonIndex].MacroID));
  ASSERT_NE(macro, nullptr);
  EXPECT_EQ(macro->nameStr(), "NewMacro_1");
  EXPECT_THAT(eventsOf(*macro), ElementsAreArray(commands(&Control::readBack)));
  EXPECT_THAT(mouse().playMacro(macroSlot).events, ElementsAreArray(playable()));
  EXPECT_THAT(mouse().faults(), IsEmpty());
}
