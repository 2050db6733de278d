// A slot in the mouse's own bytes, out and in, and as a file.

#include <random>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotReportTransfer.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/VirtualMouse/MouseHost.h"

namespace {

using Kind = MouseScenario::Kind;

class SlotReportTransfer : public ActionTest {
 protected:
  SlotReportTransfer() {
    beginProgram();
    constexpr std::size_t buttonThree = 58 + 5 * 3;
    auto image = MouseHost::numberedReport(5, 0);
    image[buttonThree] = 6;
    MouseHost::write(mouse(), MouseHost::sealed(image));
    MouseHost::announceMacro(mouse(), 3);
    MouseHost::write(mouse(), MouseHost::numberedReport(4, 3));
    mouse().clearFaults();
  }

  std::string file() { return NerinAction::encodeSlotFile(NerinAction::readSlotReports(0).value); }
};

TEST_F(SlotReportTransfer, ReadsWhatTheMouseHolds) {
  const auto read = NerinAction::readSlotReports(0);
  EXPECT_TRUE(read.outcome.isDone());
  EXPECT_EQ(hexOf(read.value.name), hexOf(mouse().nameReport(0)));
  EXPECT_EQ(hexOf(read.value.image), hexOf(mouse().imageReport(0)));
  ASSERT_TRUE(read.value.macros.contains(3));
  EXPECT_EQ(hexOf(read.value.macros.at(3)), hexOf(mouse().macroReport(3)));
}

TEST_F(SlotReportTransfer, WritesItBackWithoutAFault) {
  const auto read = NerinAction::readSlotReports(0);
  mouse().clearSlot(0);
  EXPECT_TRUE(NerinAction::writeSlotReports(0, read.value).isDone());
  EXPECT_THAT(mouse().faults(), testing::IsEmpty());
  EXPECT_FALSE(mouse().hasUnrefreshedWrites());
  EXPECT_EQ(NerinAction::readSlotReports(0).value, read.value);
}

TEST_F(SlotReportTransfer, AWrongAnswerIsAskedForAgainTwice) {
  for (const int goodAgainAfter : {1, 2, 3}) {
    // A wrong answer ends its attempt after the pause behind it.
    int pauses = 0;
    mouse().setScenario({.kind = Kind::AnswersRandom});
    setOnPause([&] {
      if (++pauses == 2 * goodAgainAfter) {
        mouse().setScenario({});
      }
    });
    EXPECT_EQ(NerinAction::readSlotReports(0).outcome.isDone(), goodAgainAfter < 3);
    setOnPause({});
    mouse().setScenario({});
  }
}

TEST_F(SlotReportTransfer, AFileGivesTheReportsBack) {
  const auto read = NerinAction::readSlotReports(0).value;
  EXPECT_EQ(NerinAction::decodeSlotFile(NerinAction::encodeSlotFile(read), 0), read);
}

TEST_F(SlotReportTransfer, AFileThatIsNotWholeIsNone) {
  const std::string whole = file();
  EXPECT_FALSE(NerinAction::decodeSlotFile("", 0));
  EXPECT_FALSE(NerinAction::decodeSlotFile(whole, 1)) << "the reports of another slot";
  EXPECT_FALSE(NerinAction::decodeSlotFile(whole + '\0', 0));
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string flipped = whole;
    flipped[at] = static_cast<char>(flipped[at] ^ 0x10);
    EXPECT_FALSE(NerinAction::decodeSlotFile(flipped, 0)) << at;
    EXPECT_FALSE(NerinAction::decodeSlotFile(whole.substr(0, at), 0)) << at;
  }
}

TEST_F(SlotReportTransfer, AFileOfNoiseDoesNoHarm) {
  std::mt19937 random(1);
  const std::size_t size = file().size();
  for (int round = 0; round < 2000; ++round) {
    std::string noise(round % 2 == 0 ? size : random() % 3000, '\0');
    for (char& byte : noise) {
      byte = static_cast<char>(random());
    }
    EXPECT_FALSE(NerinAction::decodeSlotFile(noise, 0));
  }
}

}  // namespace
