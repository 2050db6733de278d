// Which keys are commands of a macro while it is recorded, and which stop the recording.

#include <QInputDevice>
#include <QKeyEvent>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include "View/Macros/RecordedKeys.h"

namespace {

using Meaning = RecordedKeys::Meaning;
using testing::ElementsAre;
using testing::IsEmpty;

// The Mac codes of the keys below.
constexpr std::uint16_t a = 0, b = 11, leftControl = 59, leftOption = 58;

// What a hand does to a key of the keyboard, and what Qt makes of it.
struct Hand {
  QEvent::Type type;
  std::uint32_t key;  // evdev
  Qt::Key letter = Qt::Key_unknown;
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
  bool isAutoRepeat = false;
};

Hand press(std::uint32_t key) {
  return {QEvent::KeyPress, key};
}
Hand release(std::uint32_t key) {
  return {QEvent::KeyRelease, key};
}
Hand repeat(std::uint32_t key) {
  return {QEvent::KeyPress, key, Qt::Key_unknown, Qt::NoModifier, true};
}
Hand pressR(Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
  return {QEvent::KeyPress, KEY_R, Qt::Key_R, modifiers};
}

class RecordedKeysTest : public testing::Test {
 protected:
  RecordedKeys::Event take(const Hand& hand) {
    static const QInputDevice keyboard;
    const QKeyEvent event(hand.type, hand.letter, hand.modifiers, hand.key + 8, 0, 0, QString(),
                          hand.isAutoRepeat, 1, &keyboard);
    return keys.take(event, isRecording);
  }
  std::vector<Meaning> meanings(const std::vector<Hand>& hands) {
    std::vector<Meaning> result;
    result.reserve(hands.size());
    for (const Hand& hand : hands) {
      result.push_back(take(hand).meaning);
    }
    return result;
  }

  RecordedKeys keys;
  bool isRecording = true;
};

TEST_F(RecordedKeysTest, PressesAndReleasesAreCommands) {
  const auto down = take(press(KEY_A));
  EXPECT_EQ(down.meaning, Meaning::Press);
  EXPECT_EQ(down.key->keyCode, a);
  EXPECT_THAT(meanings({press(KEY_B), release(KEY_A), release(KEY_B)}),
              ElementsAre(Meaning::Press, Meaning::Release, Meaning::Release));
}

TEST_F(RecordedKeysTest, ModifiersAreCommandsToo) {
  EXPECT_THAT(
      meanings({press(KEY_LEFTSHIFT), press(KEY_A), release(KEY_A), release(KEY_LEFTSHIFT)}),
      ElementsAre(Meaning::Press, Meaning::Press, Meaning::Release, Meaning::Release));
}

TEST_F(RecordedKeysTest, NothingIsACommandWithoutARecording) {
  isRecording = false;
  const auto down = take(press(KEY_A));
  EXPECT_EQ(down.meaning, Meaning::None);
  EXPECT_EQ(down.key->kind, TrackedKey::Kind::KeyDown);
  EXPECT_THAT(meanings({press(KEY_LEFTCTRL), pressR()}), ElementsAre(Meaning::None, Meaning::None));
}

TEST_F(RecordedKeysTest, AHeldKeyIsPressedOnce) {
  EXPECT_THAT(meanings({press(KEY_A), repeat(KEY_A), repeat(KEY_A), release(KEY_A)}),
              ElementsAre(Meaning::Press, Meaning::None, Meaning::None, Meaning::Release));
}

TEST_F(RecordedKeysTest, AKeyThatWasDownBeforeNeitherRepeatsNorIsLetGo) {
  isRecording = false;
  take(press(KEY_SPACE));
  isRecording = true;
  keys.forgetKeys();
  EXPECT_THAT(meanings({repeat(KEY_SPACE), release(KEY_SPACE), press(KEY_SPACE)}),
              ElementsAre(Meaning::None, Meaning::None, Meaning::Press));
}

TEST_F(RecordedKeysTest, AKeyWithoutACodeIsNothing) {
  const auto down = take(press(KEY_F24));
  EXPECT_EQ(down.meaning, Meaning::None);
  EXPECT_FALSE(down.key);
}

TEST_F(RecordedKeysTest, ControlAndRStopOnce) {
  EXPECT_THAT(meanings({press(KEY_LEFTCTRL), pressR(), pressR()}),
              ElementsAre(Meaning::Press, Meaning::Stop, Meaning::Shortcut));
  EXPECT_FALSE(take(pressR()).key) << "the R is no key of the macro";
}

TEST_F(RecordedKeysTest, TheShortcutThatStartedDoesNotStopUntilItIsPressedAgain) {
  EXPECT_TRUE(keys.startsByShortcut());
  EXPECT_FALSE(keys.startsByShortcut()) << "a repeat";
  keys.forgetKeys();
  EXPECT_THAT(meanings({pressR(), pressR(), release(KEY_R), pressR()}),
              ElementsAre(Meaning::Shortcut, Meaning::Shortcut, Meaning::None, Meaning::Stop));
}

TEST_F(RecordedKeysTest, AShortcutWhoseReleaseIsLostStopsNevertheless) {
  EXPECT_TRUE(keys.startsByShortcut());
  keys.forgetShortcut();
  EXPECT_EQ(take(pressR()).meaning, Meaning::Stop);
  keys.forgetShortcut();
  EXPECT_TRUE(keys.startsByShortcut());
}

TEST_F(RecordedKeysTest, WithAnotherModifierItIsACommand) {
  for (const auto& [key, modifier] : std::vector<std::pair<std::uint32_t, Qt::KeyboardModifier>>{
           {KEY_LEFTSHIFT, Qt::ShiftModifier},
           {KEY_LEFTALT, Qt::AltModifier},
           {KEY_LEFTMETA, Qt::MetaModifier}}) {
    keys.forgetKeys();
    EXPECT_THAT(meanings({press(KEY_LEFTCTRL), press(key), pressR(Qt::ControlModifier | modifier),
                          release(KEY_R)}),
                ElementsAre(Meaning::Press, Meaning::Press, Meaning::Press, Meaning::Release))
        << key;
    // Either of the two says that it is held.
    keys.forgetKeys();
    EXPECT_EQ(take(pressR(Qt::ControlModifier | modifier)).meaning, Meaning::Press) << key;
  }
}

TEST_F(RecordedKeysTest, RAloneIsACommand) {
  EXPECT_EQ(take(pressR(Qt::NoModifier)).meaning, Meaning::Press);
}

TEST_F(RecordedKeysTest, TheShortcutIsOnTheLetterOrWithoutLatinLettersOnItsKey) {
  // R on another key of the layout.
  EXPECT_EQ(take({QEvent::KeyPress, KEY_O, Qt::Key_R, Qt::ControlModifier}).meaning, Meaning::Stop);
  keys.forgetShortcut();
  // The key of R with another Latin letter, and with a Cyrillic one.
  EXPECT_EQ(take({QEvent::KeyPress, KEY_R, Qt::Key_P, Qt::ControlModifier}).meaning,
            Meaning::Press);
  EXPECT_EQ(
      take({QEvent::KeyPress, KEY_R, static_cast<Qt::Key>(0x41A), Qt::ControlModifier}).meaning,
      Meaning::Stop);
}

TEST_F(RecordedKeysTest, HeldKeysAreLetGoLastOneFirst) {
  meanings({press(KEY_LEFTALT), press(KEY_A), press(KEY_B), release(KEY_A)});
  EXPECT_THAT(keys.letGo(), ElementsAre(b, leftOption));
  EXPECT_THAT(keys.letGo(), IsEmpty());
  EXPECT_THAT(meanings({release(KEY_B), release(KEY_LEFTALT)}),
              ElementsAre(Meaning::None, Meaning::None));
}

TEST_F(RecordedKeysTest, AKeyWhosePressWasTakenOutIsNotLetGo) {
  meanings({press(KEY_LEFTCTRL), press(KEY_A)});
  keys.drop(leftControl);
  EXPECT_EQ(take(release(KEY_LEFTCTRL)).meaning, Meaning::None);
  EXPECT_THAT(keys.letGo(), ElementsAre(a));
}

TEST_F(RecordedKeysTest, KnowsTheKeysOfTheShortcuts) {
  for (std::int32_t key = 0; key < 127; ++key) {
    EXPECT_EQ(RecordedKeys::isControl(key), keyModifierFlag(key) == KeyModifierControl) << key;
    EXPECT_EQ(RecordedKeys::isOption(key), keyModifierFlag(key) == KeyModifierOption) << key;
  }
}

}  // namespace
