#include <fstream>
#include <ostream>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <nlohmann/json.hpp>

#include "Kit/Desktop/KeyTracker.h"
#include "Tests/Kit/Desktop/NativeEvent.h"

namespace {

using Kind = TrackedKey::Kind;

struct What {
  Kind kind;
  std::uint16_t keyCode;
  std::uint32_t modifierFlags;
  bool isRepeat = false;

  bool operator==(const What&) const = default;
  friend std::ostream& operator<<(std::ostream& stream, const What& what) {
    return stream << static_cast<int>(what.kind) << " key " << what.keyCode << " flags " << std::hex
                  << what.modifierFlags << std::dec << (what.isRepeat ? " again" : "");
  }
};

class KeyTrackerTest : public testing::Test {
 protected:
  std::optional<What> take(const QKeyEvent& event) {
    const auto key = m_tracker.take(event);
    if (!key) {
      return std::nullopt;
    }
    EXPECT_EQ(key->modifierFlags, m_tracker.modifierFlags());
    return What{key->kind, key->keyCode, key->modifierFlags, key->isRepeat};
  }
  std::optional<What> press(std::uint32_t code, std::uint32_t nativeModifiers = 0) {
    return take(nativeEvent(QEvent::KeyPress, code, nativeModifiers));
  }
  std::optional<What> release(std::uint32_t code, std::uint32_t nativeModifiers = 0) {
    return take(nativeEvent(QEvent::KeyRelease, code, nativeModifiers));
  }

  KeyTracker m_tracker;
};

constexpr std::uint32_t nativeLock = 2;

}  // namespace

TEST_F(KeyTrackerTest, TellsAKeyDownAndUpByItsMacCode) {
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, 0}));
  EXPECT_EQ(release(KEY_A), (What{Kind::KeyUp, 0, 0}));
  EXPECT_EQ(press(KEY_ESC), (What{Kind::KeyDown, 53, 0}));
  EXPECT_EQ(release(KEY_ESC), (What{Kind::KeyUp, 53, 0}));
}

TEST_F(KeyTrackerTest, TellsEveryModifierBySideAndFlag) {
  struct Modifier {
    std::uint32_t key;
    std::uint16_t macKey;
    std::uint32_t flag;
  };
  for (const Modifier& modifier : {Modifier{KEY_LEFTMETA, 55, KeyModifierCommand},
                                   {KEY_RIGHTMETA, 54, KeyModifierCommand},
                                   {KEY_LEFTSHIFT, 56, KeyModifierShift},
                                   {KEY_RIGHTSHIFT, 60, KeyModifierShift},
                                   {KEY_LEFTALT, 58, KeyModifierOption},
                                   {KEY_RIGHTALT, 61, KeyModifierOption},
                                   {KEY_LEFTCTRL, 59, KeyModifierControl},
                                   {KEY_RIGHTCTRL, 62, KeyModifierControl},
                                   {KEY_FN, 63, KeyModifierFunction}}) {
    EXPECT_EQ(press(modifier.key), (What{Kind::FlagsChanged, modifier.macKey, modifier.flag}));
    EXPECT_EQ(press(KEY_Q), (What{Kind::KeyDown, 12, modifier.flag}));
    EXPECT_EQ(release(KEY_Q), (What{Kind::KeyUp, 12, modifier.flag}));
    EXPECT_EQ(release(modifier.key), (What{Kind::FlagsChanged, modifier.macKey, 0}));
  }
}

TEST_F(KeyTrackerTest, AddsUpTheModifiersThatAreDown) {
  press(KEY_LEFTCTRL);
  press(KEY_LEFTSHIFT);
  press(KEY_RIGHTALT);
  EXPECT_EQ(press(KEY_RIGHTMETA),
            (What{Kind::FlagsChanged, 54, 0x40000 | 0x20000 | 0x80000 | 0x100000}));
  EXPECT_EQ(release(KEY_LEFTSHIFT), (What{Kind::FlagsChanged, 56, 0x40000 | 0x80000 | 0x100000}));
}

TEST_F(KeyTrackerTest, KeepsTheFlagWhileTheOtherKeyOfThePairIsDown) {
  press(KEY_LEFTSHIFT);
  EXPECT_EQ(press(KEY_RIGHTSHIFT), (What{Kind::FlagsChanged, 60, KeyModifierShift}));
  EXPECT_EQ(release(KEY_LEFTSHIFT), (What{Kind::FlagsChanged, 56, KeyModifierShift}));
  EXPECT_EQ(release(KEY_RIGHTSHIFT), (What{Kind::FlagsChanged, 60, 0}));
}

TEST_F(KeyTrackerTest, FindsARepeatByTheKeysThatAreDown) {
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, 0}));
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, 0, true}));
  EXPECT_EQ(press(KEY_B), (What{Kind::KeyDown, 11, 0}));
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, 0, true}));
  EXPECT_EQ(release(KEY_A), (What{Kind::KeyUp, 0, 0}));
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, 0}));
  EXPECT_EQ(press(KEY_B), (What{Kind::KeyDown, 11, 0, true}));
}

TEST_F(KeyTrackerTest, DoesNotBelieveAPressThatSaysItIsARepeat) {
  EXPECT_EQ(take(nativeEvent(QEvent::KeyPress, KEY_A, 0, true)), (What{Kind::KeyDown, 0, 0}));
}

TEST_F(KeyTrackerTest, IgnoresTheReleasesBetweenRepeatedPresses) {
  press(KEY_A);
  EXPECT_EQ(take(nativeEvent(QEvent::KeyRelease, KEY_A, 0, true)), std::nullopt);
  EXPECT_EQ(take(nativeEvent(QEvent::KeyPress, KEY_A, 0, true)), (What{Kind::KeyDown, 0, 0, true}));
  EXPECT_EQ(release(KEY_A), (What{Kind::KeyUp, 0, 0}));
}

TEST_F(KeyTrackerTest, TellsTheTwoKeysOfOneMacCodeApartWhenTheyRepeat) {
  EXPECT_EQ(press(KEY_F13), (What{Kind::KeyDown, 105, 0}));
  EXPECT_EQ(press(KEY_SYSRQ), (What{Kind::KeyDown, 105, 0}));
  EXPECT_EQ(press(KEY_F13), (What{Kind::KeyDown, 105, 0, true}));
}

TEST_F(KeyTrackerTest, IgnoresAModifierThatRepeats) {
  press(KEY_LEFTSHIFT);
  EXPECT_EQ(press(KEY_LEFTSHIFT), std::nullopt);
  EXPECT_EQ(release(KEY_LEFTSHIFT), (What{Kind::FlagsChanged, 56, 0}));
}

TEST_F(KeyTrackerTest, AlternatesCapsLockWithEachPress) {
  EXPECT_EQ(press(KEY_CAPSLOCK), (What{Kind::FlagsChanged, 57, KeyModifierCapsLock}));
  EXPECT_EQ(press(KEY_CAPSLOCK), std::nullopt);
  EXPECT_EQ(release(KEY_CAPSLOCK), std::nullopt);
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, KeyModifierCapsLock}));
  EXPECT_EQ(press(KEY_LEFTSHIFT),
            (What{Kind::FlagsChanged, 56, KeyModifierCapsLock | KeyModifierShift}));
  EXPECT_EQ(release(KEY_LEFTSHIFT), (What{Kind::FlagsChanged, 56, KeyModifierCapsLock}));
  EXPECT_EQ(press(KEY_CAPSLOCK), (What{Kind::FlagsChanged, 57, 0}));
  EXPECT_EQ(release(KEY_CAPSLOCK), std::nullopt);
  EXPECT_EQ(press(KEY_CAPSLOCK), (What{Kind::FlagsChanged, 57, KeyModifierCapsLock}));
}

TEST_F(KeyTrackerTest, TakesTheStateOfCapsLockFromOutside) {
  m_tracker = KeyTracker(true);
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, KeyModifierCapsLock}));
  EXPECT_EQ(press(KEY_CAPSLOCK), (What{Kind::FlagsChanged, 57, 0}));
  m_tracker.forgetAll(true);
  EXPECT_EQ(press(KEY_CAPSLOCK), (What{Kind::FlagsChanged, 57, 0}));
  m_tracker = KeyTracker(false);
  EXPECT_EQ(press(KEY_A, nativeLock), (What{Kind::KeyDown, 0, 0}));
}

TEST_F(KeyTrackerTest, LearnsTheStateOfCapsLockFromTheFirstEvent) {
  EXPECT_EQ(press(KEY_CAPSLOCK, nativeLock), (What{Kind::FlagsChanged, 57, 0}));
  // The window system unlocks on the release, so its state still says locked.
  EXPECT_EQ(release(KEY_CAPSLOCK, nativeLock), std::nullopt);
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, 0}));
  m_tracker.forgetAll();
  EXPECT_EQ(release(KEY_A, nativeLock), (What{Kind::KeyUp, 0, KeyModifierCapsLock}));
}

TEST_F(KeyTrackerTest, DoesNotLearnTheStateOfCapsLockFromItsRelease) {
  EXPECT_EQ(release(KEY_CAPSLOCK, nativeLock), std::nullopt);
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, 0}));
}

TEST_F(KeyTrackerTest, LearnsTheStateOfCapsLockFromAKeyThatHasNoMacCode) {
  EXPECT_EQ(press(KEY_F24, nativeLock), std::nullopt);
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, KeyModifierCapsLock}));
}

TEST_F(KeyTrackerTest, ForgetsEveryKeyThatWasDown) {
  press(KEY_LEFTCTRL);
  press(KEY_A);
  m_tracker.forgetAll();
  EXPECT_EQ(m_tracker.modifierFlags(), 0U);
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, 0}));
  EXPECT_EQ(press(KEY_LEFTCTRL), (What{Kind::FlagsChanged, 59, KeyModifierControl}));
}

TEST_F(KeyTrackerTest, TellsAReleaseWhosePressItDidNotSee) {
  EXPECT_EQ(release(KEY_SPACE), (What{Kind::KeyUp, 49, 0}));
  EXPECT_EQ(release(KEY_LEFTSHIFT), (What{Kind::FlagsChanged, 56, 0}));
}

TEST_F(KeyTrackerTest, TellsNothingOfOtherEventsAndOtherKeys) {
  EXPECT_EQ(take(nativeEvent(QEvent::ShortcutOverride, KEY_A)), std::nullopt);
  EXPECT_EQ(press(KEY_F24), std::nullopt);
  EXPECT_EQ(release(KEY_F24), std::nullopt);
  EXPECT_EQ(take(scannedEvent(QEvent::KeyPress, 0)), std::nullopt);
  EXPECT_EQ(press(KEY_A), (What{Kind::KeyDown, 0, 0}));
}

TEST_F(KeyTrackerTest, PassesTheTimeOfTheEventThrough) {
  QKeyEvent event = nativeEvent(QEvent::KeyPress, KEY_A);
  event.setTimestamp(0x1'2345'6789);
  const auto key = m_tracker.take(event);
  ASSERT_TRUE(key);
  EXPECT_EQ(key->timestamp, 0x1'2345'6789U);
}

TEST(KeyModifierFlag, IsTheOneThatMacrosTest) {
  std::map<std::uint32_t, std::uint32_t> flags;
  std::ifstream file(NERIN_FIXTURES "/protocol-tables.json");
  const auto tables = nlohmann::json::parse(file);
  for (const auto& row : tables.at("event_modifier_masks").at("rows")) {
    for (const auto& macKey : row.at("mac")) {
      flags[macKey.get<std::uint32_t>()] = row.at("mask").get<std::uint32_t>();
    }
  }
  ASSERT_EQ(flags.size(), 10U);
  for (std::uint32_t macKey = 0; macKey < 256; ++macKey) {
    EXPECT_EQ(keyModifierFlag(macKey), flags.contains(macKey) ? flags[macKey] : 0U) << macKey;
  }
}
