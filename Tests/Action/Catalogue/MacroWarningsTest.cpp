// What is said about a macro before it is applied, and what the mouse then plays.

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Catalogue/MacroWarnings.h"
#include "MacroPlayer/MacroPlayback.h"
#include "Tests/Support/ActionTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::int32_t keyA = 0;
constexpr std::int32_t keyB = 11;
constexpr std::int32_t keyEquals = 24;  // the mouse has no code for it
constexpr std::int32_t leftButton = 120;

class MacroWarnings : public ActionTest {
 protected:
  using Info = MacroKeyInfo;
  using Kind = MacroWarning::Kind;

  void add(std::int32_t code, std::int32_t flag, std::int32_t delay = 0) {
    m_macro.keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(code, flag, delay));
  }
  void stroke(std::int32_t key, std::int32_t delay = 0) {
    add(key, Info::KeyPress, delay);
    add(key, Info::KeyRelease);
  }
  std::vector<MacroWarning> warnings() const {
    return NerinAction::warningsOf(m_macro.keyInfoArr());
  }
  MacroPlayback played() const {
    return playbackOf(NerinAction::encodeMacroReport(0, NerinAction::streamOf(m_macro, {})));
  }
  // As if it was written into the mouse, and the slot read again.
  void readBack() {
    auto report = NerinAction::encodeMacroReport(0, NerinAction::streamOf(m_macro, {}));
    report[0] = 0xB0;
    m_macro.setKeyInfoArr(NerinAction::eventsOf(*NerinAction::decodeMacroReport(report)));
  }

  MacroInfo m_macro;
};

}  // namespace

TEST_F(MacroWarnings, AreNoneForAMacroThatThePlayerPlaysAsItIs) {
  EXPECT_THAT(warnings(), IsEmpty());
  stroke(keyA, 65535);
  stroke(keyB);
  stroke(keyA);
  EXPECT_THAT(warnings(), IsEmpty());
  EXPECT_THAT(played().events, SizeIs(6));
  EXPECT_EQ(played().duration.count(), 65535);
}

TEST_F(MacroWarnings, NameTheKeysThatTheMouseCannotSend) {
  stroke(keyA);
  stroke(keyEquals, 20);
  EXPECT_THAT(warnings(),
              ElementsAre(MacroWarning{Kind::CannotSend, 2}, MacroWarning{Kind::CannotSend, 3}));
  EXPECT_THAT(played().events, SizeIs(2));
}

TEST_F(MacroWarnings, NameWhatIsStillDownAtTheEnd) {
  add(keyA, Info::KeyPress);
  stroke(keyB);
  add(leftButton, Info::MousePress);
  add(keyB, Info::KeyPress);
  add(keyB, Info::KeyPress);  // one key, let go once
  add(keyB, Info::KeyRelease);
  EXPECT_THAT(warnings(),
              ElementsAre(MacroWarning{Kind::NotReleased, 0}, MacroWarning{Kind::NotReadBack, 3},
                          MacroWarning{Kind::NotReleased, 3}));
  add(keyA, Info::KeyRelease);
  add(leftButton, Info::MouseRelease);
  EXPECT_THAT(warnings(), ElementsAre(MacroWarning{Kind::NotReadBack, 3}));
}

TEST_F(MacroWarnings, AReleaseWithoutAPressIsHarmless) {
  add(keyA, Info::KeyRelease);
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(MacroWarnings, NameTheMouseButtonsThatAReadLoses) {
  stroke(keyA);
  for (int i = 0; i < 3; ++i) {
    add(leftButton, Info::MousePress);
    add(leftButton, Info::MouseRelease);
  }
  EXPECT_THAT(warnings(), ElementsAre(MacroWarning{Kind::NotReadBack, 2}));
  EXPECT_THAT(played().events, SizeIs(8));
  readBack();
  ASSERT_THAT(warnings(), SizeIs(6));
  EXPECT_EQ(warnings().front(), (MacroWarning{Kind::LostButton, 2}));
  EXPECT_EQ(warnings().back(), (MacroWarning{Kind::LostButton, 7}));
  EXPECT_THAT(played().events, SizeIs(2));
}

TEST_F(MacroWarnings, NameThePauseThatIsPlayedForOneThatIsTooLong) {
  add(keyA, Info::KeyPress, 65536);
  add(keyA, Info::KeyRelease, 70000);
  add(keyB, Info::KeyRelease, INT32_MAX);
  add(keyB, Info::KeyRelease, -1);
  EXPECT_THAT(warnings(), ElementsAre(MacroWarning{Kind::LongPause, 0, 0},
                                      MacroWarning{Kind::LongPause, 1, 70000 - 65536},
                                      MacroWarning{Kind::LongPause, 2, 65535}));
  EXPECT_EQ(played().duration.count(), 0 + 4464 + 65535);
}

TEST_F(MacroWarnings, CountTheEvents) {
  for (int i = 0; i < 20; ++i) {
    stroke(keyA);
  }
  EXPECT_THAT(warnings(), IsEmpty());
  stroke(keyEquals);
  EXPECT_THAT(warnings(),
              ElementsAre(MacroWarning{Kind::TooManyEvents, MacroWarning::wholeMacro, 42},
                          MacroWarning{Kind::CannotSend, 40}, MacroWarning{Kind::CannotSend, 41}));
}

TEST_F(MacroWarnings, SayWhereTheRoomOfTheMouseEnds) {
  for (int i = 0; i < 400; ++i) {
    stroke(keyA, 1);  // five bytes
  }
  ASSERT_THAT(warnings(), SizeIs(1));
  EXPECT_THAT(played().events, SizeIs(800));
  stroke(keyB);
  stroke(keyB);
  ASSERT_THAT(warnings(), SizeIs(2));
  EXPECT_EQ(warnings().back(), (MacroWarning{Kind::NoRoom, 800}));
  EXPECT_THAT(played().events, SizeIs(800));
}

TEST_F(MacroWarnings, LookAtEachKeyOfACombination) {
  writeText(supportFolder() / "MenuInfo.xml",
            "<R><MacroInsertMenu><Item functionID='1' KeyBit1='37' KeyBit2='8' KeyBit3='FF'/>"
            "<Item functionID='2' KeyBit1='37' KeyBit2='18' KeyBit3='FF'/></MacroInsertMenu></R>");
  NerinAction::initMenuList();
  ASSERT_THAT(NerinAction::getMacroMenuByFunid(1)->usedKeys(), ElementsAre(55, 8));
  add(1, Info::Function);
  EXPECT_THAT(warnings(), IsEmpty());
  EXPECT_THAT(played().events, SizeIs(4));
  add(2, Info::Function);  // with =
  add(3, Info::Function);  // the catalogue has none of that id
  EXPECT_THAT(warnings(),
              ElementsAre(MacroWarning{Kind::CannotSend, 1}, MacroWarning{Kind::CannotSend, 2}));
  EXPECT_THAT(played().events, SizeIs(6));
}
