#include <algorithm>
#include <cstring>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/SlotAsRead.h"

// A read returns what was applied, except what the mouse cannot store.

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

class RoundTrip : public ActionTest {
 protected:
  RoundTrip() { beginProgram(); }

  // A record that the mouse can store completely.
  static _Nerin_PROFILE wholeRecord(std::uint32_t seed) {
    _Nerin_PROFILE profile{};
    profile.modeType = seed % 2;
    profile.dpiLevel = 5;
    profile.currSelectDPI = seed % 5;
    for (std::uint32_t level = 0; level < levelCount; ++level) {
      profile.xSensArr[level] = 2 + (seed * 13 + level * 29) % 163;
      profile.ySensArr[level] = 2 + (seed * 17 + level * 31) % 163;
    }
    for (std::uint32_t zone = 0; zone < zoneCount; ++zone) {
      profile.lightColorArr[zone] = {(seed * 41 + zone) % 256, (seed * 43 + zone) % 256,
                                     (seed * 47 + zone) % 256};
    }
    profile.liftHeight = (seed * 7) % 32;
    profile.poRate = seed % 4;
    return profile;
  }

  void apply(int slot, const std::string& name) {
    library().setCurrFWProfileIndex(slot);
    library().setFwProfileId(-1, slot);
    library().setCurrFWProfileName(name);
    EXPECT_TRUE(NerinAction::applySlot().isDone());
  }

  // Applies selProfile to slot 2 and reads it back into it.
  void applyAndRead() {
    apply(2, "Game");
    EXPECT_TRUE(NerinAction::loadSlot(2).value);
  }

  // The button after a write and a read.
  _BTN_INFO roundTrip(const _BTN_INFO& info) {
    // The library has room for fifty.
    library().removeAllNoDefault();
    editState->edit() = wholeRecord(0);
    editState->edit().btnInfo[3] = info;
    applyAndRead();
    return editState->selProfile().btnInfo[3];
  }

  static std::vector<std::uint32_t> keyBits(const _BTN_INFO& info) {
    return {std::begin(info.KeyBit), std::end(info.KeyBit)};
  }
};

TEST_F(RoundTrip, AllSlotsWithMacrosOnEveryButton) {
  // Modes and counts that the mouse can store.
  constexpr std::uint32_t repeats[][2] = {{1, 255}, {2, 1}, {2, 254}, {3, 255}, {4, 255}};
  std::vector<_Nerin_PROFILE> records;
  std::vector<std::vector<Events>> events;
  int id = 0;
  for (int slot = 0; slot < 10; ++slot) {
    _Nerin_PROFILE record = wholeRecord(static_cast<std::uint32_t>(slot));
    events.emplace_back();
    for (int index = 0; index < 16; ++index) {
      Events list;
      for (int n = 0; n <= index; ++n) {
        list.push_back({(slot * 16 + n) % 10, n % 2, (slot * 997 + n * 499) % 65536});
      }
      ++id;
      addMacro(id, "macro " + std::to_string(id), list);
      const auto* repeat = repeats[id % 5];
      record.btnInfo[index] = macroButton(static_cast<std::uint32_t>(id), repeat[0], repeat[1]);
      events.back().push_back(std::move(list));
    }
    records.push_back(record);
  }
  for (int slot = 0; slot < 10; ++slot) {
    editState->edit() = records[static_cast<std::size_t>(slot)];
    apply(slot, "Slot " + std::to_string(slot));
  }
  EXPECT_THAT(mouse().faults(), testing::IsEmpty());

  for (const auto& macro : NerinAction::macroStore->macroListArrs) {
    macro->keyInfoArr().clear();
  }
  for (int slot = 0; slot < 10; ++slot) {
    SCOPED_TRACE(slot);
    const auto at = static_cast<std::size_t>(slot);
    editState->edit() = {};
    editState->clearNeedSave();
    ASSERT_TRUE(NerinAction::loadSlot(slot).value);
    EXPECT_EQ(differenceOf(editState->selProfile(), records[at]), "");
    EXPECT_EQ(library().currProfile()->name(), "Slot " + std::to_string(slot));
    for (int index = 0; index < 16; ++index) {
      const auto macro = NerinAction::getMacroById(16 * slot + index + 1);
      EXPECT_EQ(eventsOf(*macro), events[at][static_cast<std::size_t>(index)]) << index;
    }
  }
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(160));
}

TEST_F(RoundTrip, IntoAnEmptyCatalogueAHundredMacrosComeBack) {
  for (int slot = 0; slot < 10; ++slot) {
    editState->edit() = wholeRecord(0);
    for (int index = 0; index < 16; ++index) {
      const int id = slot * 16 + index + 1;
      addMacro(id, "macro " + std::to_string(id), {{49, 0, 0}});
      editState->edit().btnInfo[index] = macroButton(static_cast<std::uint32_t>(id));
    }
    apply(slot, "Slot " + std::to_string(slot));
  }
  NerinAction::macroStore->macroListArrs.clear();
  NerinAction::refreshMenuList();
  std::vector<std::uint32_t> ids;
  for (int slot = 0; slot < 10; ++slot) {
    EXPECT_TRUE(NerinAction::loadSlot(slot).value);
    for (const _BTN_INFO& info : editState->selProfile().btnInfo) {
      ids.push_back(info.MacroID);
    }
  }
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(100));
  EXPECT_EQ(ids[99], 100U);
  EXPECT_THAT(std::vector(ids.begin() + 100, ids.end()), Each(0U));
}

TEST_F(RoundTrip, EveryFunctionThatTheMenusOffer) {
  _Nerin_PROFILE record = wholeRecord(3);
  const std::uint32_t mouseFunctions[][2] = {{1, 1},  {3, 2},  {7, 3},   {8, 4},  {9, 5},
                                             {10, 6}, {11, 7}, {5, 242}, {6, 241}};
  std::size_t index = 0;
  for (const auto& function : mouseFunctions) {
    _BTN_INFO& info = record.btnInfo[index++];
    info = button(1, {function[1]});
    info.FuncID = function[0];
    info.MacroID = 1;
  }
  const std::uint32_t dpiFunctions[][2] = {{1, 16}, {2, 9}, {3, 10}, {4, 11}, {5, 21}};
  for (const auto& function : dpiFunctions) {
    _BTN_INFO& info = record.btnInfo[index++];
    info = button(function[1], {64, 65}, ButtonTypeSensitivity);
    info.FuncID = function[0];
  }
  record.btnInfo[index++] = button(15, {}, ButtonTypeLaunch);
  record.btnInfo[index++] = button(255, {1, 2, 3, 4}, ButtonTypeDisabled);
  ASSERT_EQ(index, 16U);
  editState->edit() = record;
  applyAndRead();
  EXPECT_EQ(differenceOf(editState->selProfile(), record), "");
}

TEST_F(RoundTrip, EveryKeyThatTheMouseKnows) {
  int kept = 0;
  for (std::uint32_t key = 0; key < 128; ++key) {
    const _BTN_INFO back = roundTrip(button(2, {key}));
    EXPECT_EQ(back.FuncTableId, 2U);
    kept += back.KeyBit[0] == key ? 1 : 0;
  }
  // 102 keys have a usage, and the right Command key has a modifier bit. The four right-hand
  // modifiers come back as left-hand ones.
  EXPECT_EQ(kept, 99);
}

// What a person finds on a new mouse: each button says what it does, also after the mouse had it.
TEST_F(RoundTrip, FactoryButtonsHaveACaptionAndKeepIt) {
  int profiles = 0;
  for (const auto& profile : library().defaultProfileArrs()) {
    const _Nerin_PROFILE factory = profile->profileData();
    editState->edit() = factory;
    applyAndRead();
    for (std::size_t index = 0; index < buttonCount; ++index) {
      const std::string caption =
          NerinAction::getBtnCaption(factory.btnInfo[index], static_cast<int>(index));
      EXPECT_FALSE(caption.empty()) << index;
      EXPECT_EQ(NerinAction::getBtnCaption(editState->selProfile().btnInfo[index],
                                           static_cast<int>(index)),
                caption);
    }
    const auto held = mouse().imageReport(2);
    applyAndRead();
    EXPECT_EQ(hexOf(mouse().imageReport(2)), hexOf(held));
    ++profiles;
  }
  EXPECT_EQ(profiles, 10);
}

TEST_F(RoundTrip, IsStableAfterTheFirst) {
  addMacro(1, "A name that is longer than the mouse keeps", {{121, 3, 70000}, {24, 1, 0}});
  editState->edit() = wholeRecord(1);
  editState->edit().dpiLevel = 2;
  editState->edit().islightOnArr[0] = 1;
  editState->edit().btnInfo[3] = macroButton(1, 2, 300);
  editState->edit().btnInfo[4] = button(2, {60});
  applyAndRead();
  const _Nerin_PROFILE first = editState->selProfile();
  applyAndRead();
  EXPECT_EQ(differenceOf(editState->selProfile(), first), "");
}

TEST_F(RoundTrip, AnyRecordComesBackAsTheMouseKeepsIt) {
  for (std::uint32_t seed = 0; seed < 300; ++seed) {
    auto* words = reinterpret_cast<std::uint32_t*>(&editState->edit());
    std::uint32_t noise = seed * 2654435761U + 1;
    for (std::size_t word = 0; word < sizeof(_Nerin_PROFILE) / 4; ++word) {
      noise = noise * 1664525U + 1013904223U;
      // Mostly numbers with a meaning.
      words[word] = (noise >> 8U) % 3 == 0 ? noise : (noise >> 16U) % 24;
    }
    for (_BTN_INFO& info : editState->edit().btnInfo) {
      // A function code is one byte.
      info.FuncTableId &= 0xFFU;
    }
    const _Nerin_PROFILE expected = slotAsRead(2, editState->selProfile());
    library().setCurrFWProfileName("Game");
    EXPECT_TRUE(NerinAction::writeSlot(2).isDone());
    ASSERT_TRUE(NerinAction::loadSlot(2).value);
    ASSERT_EQ(differenceOf(editState->selProfile(), expected), "") << seed;
  }
  EXPECT_THAT(mouse().faults(), testing::IsEmpty());
}

// --- What is lost -------------------------------------------------------------------------------

TEST_F(RoundTrip, LosesTheProgramOfAButton) {
  _BTN_INFO info = button(15, {}, ButtonTypeLaunch);
  setText(info.app_path, "/usr/bin/game");
  EXPECT_EQ(textOf(roundTrip(info).app_path), "");
}

TEST_F(RoundTrip, LosesTheSwitchesOfTheLights) {
  editState->edit() = wholeRecord(0);
  std::fill(std::begin(editState->edit().islightOnArr), std::end(editState->edit().islightOnArr),
            1);
  applyAndRead();
  EXPECT_THAT(editState->selProfile().islightOnArr, Each(0U));
}

TEST_F(RoundTrip, LosesTheLevelsThatAreNotInUse) {
  editState->edit() = wholeRecord(0);
  editState->edit().dpiLevel = 3;
  applyAndRead();
  EXPECT_NE(editState->selProfile().xSensArr[2], 0U);
  EXPECT_EQ(editState->selProfile().xSensArr[3], 0U);
  EXPECT_EQ(editState->selProfile().ySensArr[4], 0U);
  EXPECT_EQ(library().currProfile()->profileData().xSensArr[3], 0U);
}

TEST_F(RoundTrip, LosesTheSideOfAModifier) {
  EXPECT_EQ(roundTrip(button(2, {54})).KeyBit[0], 55U);
  EXPECT_EQ(roundTrip(button(2, {60})).KeyBit[0], 56U);
  EXPECT_EQ(roundTrip(button(2, {61})).KeyBit[0], 58U);
  EXPECT_EQ(roundTrip(button(2, {62})).KeyBit[0], 59U);
}

TEST_F(RoundTrip, TurnsUnknownKeysIntoTheKeyA) {
  EXPECT_EQ(roundTrip(button(2, {24})).KeyBit[0], 0U);
  EXPECT_EQ(roundTrip(button(2, {241})).KeyBit[0], 0U);
}

TEST_F(RoundTrip, TurnsTheParametersOfAKeyIntoItsUsage) {
  EXPECT_THAT(keyBits(roundTrip(button(2, {49, 7, 8, 9}))), ElementsAre(49, 0x2C, 0, 0));
}

TEST_F(RoundTrip, DisablesAButtonWhoseMacroIsGone) {
  const _BTN_INFO back = roundTrip(macroButton(77, 2, 5));
  EXPECT_EQ(back.FuncTableId, 255U);
  EXPECT_EQ(back.btnType, 6U);
  EXPECT_EQ(back.MacroID, 0U);
  EXPECT_THAT(keyBits(back), ElementsAre(0, 0, 0, 0));
}

TEST_F(RoundTrip, LosesTheMouseButtonsOfMacros) {
  const auto macro = addMacro(1, "m", {{120, 3, 5}, {122, 4, 0}});
  roundTrip(macroButton(1));
  EXPECT_EQ(eventsOf(*macro), (Events{{0, 3, 5}, {0, 4, 0}}));
}

TEST_F(RoundTrip, LosesTheKeysThatMacrosCannotCarry) {
  const auto macro = addMacro(1, "m", {{24, 0, 0}, {24, 1, 0}, {54, 0, 0}, {54, 1, 0}});
  roundTrip(macroButton(1));
  EXPECT_EQ(eventsOf(*macro), (Events{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}));
}

TEST_F(RoundTrip, TurnsCombinationsIntoPlainKeys) {
  endProgram();
  writeText(supportFolder() / "MenuInfo.xml",
            "<R><MacroList/><MacroInsertMenu><Item functionID='9' KeyBit1='37' KeyBit2='8' "
            "KeyBit3='FF' KeyBit4='FF'/></MacroInsertMenu></R>");
  beginProgram();
  const auto macro = addMacro(1, "m", {{9, 2, 500}});
  roundTrip(macroButton(1));
  EXPECT_EQ(eventsOf(*macro), (Events{{55, 0, 0}, {8, 0, 0}, {8, 1, 0}, {55, 1, 0}}));
}

TEST_F(RoundTrip, TruncatesDelays) {
  const auto macro = addMacro(1, "m", {{49, 0, 65536 + 7}, {49, 1, 65536}, {49, 0, -1}});
  roundTrip(macroButton(1));
  EXPECT_EQ(eventsOf(*macro), (Events{{49, 0, 7}, {49, 1, 0}, {49, 0, 0}}));
}

TEST_F(RoundTrip, CutsAMacroAtTheEndOfItsReport) {
  const auto macro = addMacro(1, "m", Events(3000, {49, 0, 0}));
  roundTrip(macroButton(1));
  // The count has the low byte of 2000 and the high byte of 3000.
  EXPECT_THAT(macro->keyInfoArr(), SizeIs(2000));
}

TEST_F(RoundTrip, DoublesAMacroOfALongName) {
  addMacro(1, std::string(22, 'n'), {{49, 0, 0}});
  EXPECT_EQ(roundTrip(macroButton(1)).MacroID, 2U);
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(2));
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.back()->nameStr(), std::string(21, 'n'));
  EXPECT_EQ(eventsOf(*NerinAction::macroStore->macroListArrs.back()), (Events{{49, 0, 0}}));
}

TEST_F(RoundTrip, HidesAMacroOfAForeignName) {
  addMacro(1, "M\xC3\xA4kro", {{49, 0, 0}});
  EXPECT_EQ(roundTrip(macroButton(1)).MacroID, 2U);
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.back()->nameStr(), "dmr_fw_macro_tag_2_3");
  EXPECT_TRUE(NerinAction::macroStore->macroListArrs.back()->isNoDisplay());
}

TEST_F(RoundTrip, ConfusesMacrosOfOneName) {
  addMacro(1, "m", {{49, 0, 0}});
  addMacro(2, "m", {{36, 0, 0}});
  EXPECT_EQ(roundTrip(macroButton(2)).MacroID, 1U);
  EXPECT_EQ(eventsOf(*NerinAction::macroStore->macroListArrs.front()), (Events{{36, 0, 0}}));
}

TEST_F(RoundTrip, BendsRepeatCounts) {
  addMacro(1, "m", {{49, 0, 0}});
  const auto back = [&](std::uint32_t mode, std::uint32_t count) {
    const _BTN_INFO info = roundTrip(macroButton(1, mode, count));
    return std::pair{info.KeyBit[0], info.KeyBit[1]};
  };
  using Pair = std::pair<std::uint32_t, std::uint32_t>;
  EXPECT_EQ(back(2, 0), (Pair{2, 1}));
  EXPECT_EQ(back(2, 1), (Pair{2, 1}));
  EXPECT_EQ(back(2, 254), (Pair{2, 254}));
  EXPECT_EQ(back(2, 255), (Pair{4, 255})) << "for ever";
  EXPECT_EQ(back(2, 300), (Pair{2, 254}));
  EXPECT_EQ(back(1, 3), (Pair{1, 255}));
  EXPECT_EQ(back(3, 3), (Pair{3, 255}));
  EXPECT_EQ(back(4, 3), (Pair{4, 255}));
  EXPECT_EQ(back(9, 3), (Pair{0, 255}));
}

TEST_F(RoundTrip, LosesTheMacroIdOfOtherFunctions) {
  _BTN_INFO info = button(16, {64, 64}, ButtonTypeSensitivity);
  info.MacroID = 5;
  EXPECT_EQ(roundTrip(info).MacroID, 0U);
}

TEST_F(RoundTrip, LosesARateThatDoesNotExist) {
  editState->edit() = wholeRecord(0);
  editState->edit().poRate = 7;
  applyAndRead();
  EXPECT_EQ(editState->selProfile().poRate, 0U);
}

TEST_F(RoundTrip, LosesAModeThatIsNotBattle) {
  editState->edit() = wholeRecord(0);
  editState->edit().modeType = 2;
  applyAndRead();
  EXPECT_EQ(editState->selProfile().modeType, 0U);
}

TEST_F(RoundTrip, KeepsAnActiveLevelThatDoesNotExist) {
  editState->edit() = wholeRecord(0);
  editState->edit().dpiLevel = 2;
  editState->edit().currSelectDPI = 9;
  applyAndRead();
  EXPECT_EQ(editState->selProfile().currSelectDPI, 9U);
  EXPECT_EQ(editState->selProfile().dpiLevel, 2U);
}

}  // namespace
