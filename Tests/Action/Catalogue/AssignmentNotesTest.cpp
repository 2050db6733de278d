#include <algorithm>
#include <set>

#include <gmock/gmock.h>

#include "Action/Catalogue/AssignmentNotes.h"
#include "Action/Wire/KeyCodes.h"
#include "Kit/Core/LXKey.h"
#include "Tests/Support/ActionTest.h"

// What is said about an assignment while it is chosen.

namespace {

using assignmentnotes::Note;

class AssignmentNotes : public ActionTest {
 protected:
  AssignmentNotes() { beginProgram(); }

  static Note noteOf(const std::shared_ptr<MacroInfo>& macro) {
    return assignmentnotes::ofMacro(macro.get());
  }
};

constexpr Note everyNote[] = {Note::UnsendableKey, Note::NoKey,           Note::NoFunction,
                              Note::NoMacro,       Note::SharedMacroName, Note::LongMacroName,
                              Note::NoProgram};

}  // namespace

TEST_F(AssignmentNotes, AKeyIsSentByItsUsageOrItsModifier) {
  for (const int sendable : {0, 40, 53, 54, 55, 56, 57, 59, 62, 105, 126}) {
    EXPECT_EQ(assignmentnotes::ofKey(sendable), Note::None) << sendable;
  }
  for (const int other : {10, 24, 63, 64, 72, 73, 74, 79, 80, 90, 93, 104, 106, 127, 256}) {
    EXPECT_EQ(assignmentnotes::ofKey(other), Note::UnsendableKey) << other;
  }
  EXPECT_EQ(assignmentnotes::ofKey(-1), Note::NoKey);
}

TEST_F(AssignmentNotes, EveryRareKeyHasANameAndIsSentAsItself) {
  std::set<std::string> titles;
  for (const std::int32_t key : assignmentnotes::rareKeys()) {
    const std::uint32_t usage = NerinAction::GetFWKeyCode(static_cast<std::uint32_t>(key));
    EXPECT_EQ(NerinAction::GetKeyCodeByFW(usage), static_cast<std::uint32_t>(key));
    EXPECT_FALSE(LXKey::getStrByKeycode(key).empty()) << key;
    EXPECT_TRUE(titles.insert(assignmentnotes::rareKeyTitle(key)).second) << key;
    EXPECT_TRUE(assignmentnotes::canSend(key)) << key;
  }
  EXPECT_EQ(assignmentnotes::rareKeys().front(), 53);
  EXPECT_TRUE(titles.contains("F13 (Print Screen)"));
  EXPECT_TRUE(titles.contains("Home"));
}

// Of F13 to F24 and the keys for the volume, it has codes for three.
TEST_F(AssignmentNotes, TheRareKeysHoldTheFunctionKeysThatTheMouseHasCodesFor) {
  const auto& rare = assignmentnotes::rareKeys();
  for (const std::int32_t key : {105, 107, 113, 106, 64, 79, 80, 90, 72, 73, 74}) {
    EXPECT_EQ(std::count(rare.begin(), rare.end(), key), assignmentnotes::canSend(key) ? 1 : 0)
        << key;
  }
}

TEST_F(AssignmentNotes, WithoutAMacroOrAProgramThatIsTheNote) {
  EXPECT_EQ(noteOf(nullptr), Note::NoMacro);
  EXPECT_EQ(noteOf(addMacro(5, "Five")), Note::None);
  EXPECT_EQ(assignmentnotes::ofProgram(""), Note::NoProgram);
  EXPECT_EQ(assignmentnotes::ofProgram("/opt/tool"), Note::None);
}

TEST_F(AssignmentNotes, TheMouseKeepsTwentyOneLettersOfANameInAnyScript) {
  EXPECT_EQ(noteOf(addMacro(1, std::string(21, 'a'))), Note::None);
  EXPECT_EQ(noteOf(addMacro(2, std::string(22, 'a'))), Note::LongMacroName);
  std::string umlauts;
  for (int i = 0; i < 21; ++i) {
    umlauts += "\xC3\xBC";
  }
  EXPECT_EQ(noteOf(addMacro(3, umlauts)), Note::None);
  EXPECT_EQ(noteOf(addMacro(4, "dmr_fw_macro_tag_1_of_a_long_name")), Note::None);
}

TEST_F(AssignmentNotes, OneNameForTwoMacrosCountsUnlessOneIsHidden) {
  const auto one = addMacro(1, "Twin");
  EXPECT_EQ(noteOf(one), Note::None);
  const auto other = addMacro(2, "Twin");
  EXPECT_EQ(noteOf(one), Note::SharedMacroName);
  EXPECT_EQ(noteOf(other), Note::SharedMacroName);
  other->setIsNoDisplay(true);
  EXPECT_EQ(noteOf(one), Note::None);
}

TEST_F(AssignmentNotes, EveryNoteHasATextAndOnlyAnIncompleteAssignmentAnEffect) {
  for (const Note note : everyNote) {
    EXPECT_NE(std::string(assignmentnotes::textOf(note)), "");
    const bool isComplete = note == Note::SharedMacroName || note == Note::LongMacroName;
    EXPECT_EQ(std::string(assignmentnotes::effectOf(note)).empty(), isComplete);
  }
  EXPECT_EQ(std::string(assignmentnotes::textOf(Note::None)), "");
  EXPECT_EQ(std::string(assignmentnotes::effectOf(Note::None)), "");
}
