#include <gmock/gmock.h>

#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Wire/ProfileImage.h"
#include "Kit/Core/LXLogger.h"
#include "Tests/Support/ActionTest.h"

// The name of a slot on the mouse.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ProfileName : public ActionTest {
 protected:
  ProfileName() { NerinAction::startListenDev(); }

  static std::string nameReport(int slot, const std::string& name) {
    Bytes report(70);
    report[0] = 6;
    report[2] = static_cast<std::uint8_t>(slot);
    report[4] = static_cast<std::uint8_t>(name.size());
    std::copy(name.begin(), name.end(), report.begin() + 5);
    report[3] = checksumOf(report);
    return hexOf(report);
  }
};

TEST_F(ProfileName, IsWrittenWithoutAReadyCommandAndRefreshed) {
  EXPECT_TRUE(NerinAction::setFWProfileName(3, "Game").isDone());
  EXPECT_THAT(trace(), ElementsAre("SET 0306 1 " + nameReport(3, "Game"), "SLEEP 30",
                                   "SET 0300 0 c400000000000000", "SLEEP 30"));
  EXPECT_EQ(mouse().slotName(3), "Game");
  EXPECT_THAT(mouse().faults(), IsEmpty());
}

TEST_F(ProfileName, IsReadAfterAReadyCommand) {
  EXPECT_EQ(NerinAction::getFWProfileName(4).value, "Profile#5");
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 c40c040000000000", "SLEEP 30",
                                   "GET 0306 1 " + hexOf(mouse().nameReport(4)), "SLEEP 30"));
}

TEST_F(ProfileName, OfSeventyCharactersIsSentAsItsFirst65) {
  const std::string name = std::string(60, 'n') + "0123456789";
  EXPECT_TRUE(NerinAction::setFWProfileName(0, name).isDone());
  EXPECT_EQ(mouse().nameReport(0)[4], 65);
  EXPECT_EQ(NerinAction::getFWProfileName(0).value, name.substr(0, 65));
}

TEST_F(ProfileName, Of65CharactersHasNoNulAndIsReadWhole) {
  const std::string name(65, 'n');
  EXPECT_TRUE(NerinAction::setFWProfileName(0, name).isDone());
  EXPECT_EQ(mouse().nameReport(0)[69], 'n');
  EXPECT_EQ(NerinAction::getFWProfileName(0).value, name);
}

TEST_F(ProfileName, Character65IsNotCoveredByTheChecksum) {
  EXPECT_TRUE(NerinAction::setFWProfileName(0, std::string(64, 'n') + "a").isDone());
  const std::uint8_t checksum = mouse().nameReport(0)[3];
  EXPECT_TRUE(NerinAction::setFWProfileName(0, std::string(64, 'n') + "z").isDone());
  EXPECT_EQ(mouse().nameReport(0)[3], checksum);
  EXPECT_THAT(mouse().faults(), IsEmpty());
}

TEST_F(ProfileName, ThatIsNotAsciiIsNotSentAtAll) {
  EXPECT_TRUE(NerinAction::setFWProfileName(0, "Sp\xC3\xA4ter").isDone());
  EXPECT_TRUE(NerinAction::setFWProfileName(0, std::nullopt).isDone());
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(mouse().slotName(0), "Profile#1");
}

TEST_F(ProfileName, ThatIsEmptyMakesTheSlotANamelessOne) {
  EXPECT_TRUE(NerinAction::setFWProfileName(0, "").isDone());
  EXPECT_EQ(mouse().nameReport(0)[4], 0);
  EXPECT_EQ(NerinAction::getFWProfileName(0).value, "");
  EXPECT_FALSE(NerinAction::getFWProfileData(0).value);
}

TEST_F(ProfileName, IsReadWithoutRegardToItsLengthByte) {
  Bytes report = bytesOfHex(nameReport(2, "Game"));
  report[4] = 0;
  report[3] = checksumOf(report);
  mouse().controlTransfer({0x21, 0x09, 0x0306, 1, 70}, report);
  EXPECT_EQ(NerinAction::getFWProfileName(2).value, "Game");
}

TEST_F(ProfileName, OfForeignBytesIsNone) {
  Bytes report = bytesOfHex(nameReport(2, "Gam\xE9"));
  mouse().controlTransfer({0x21, 0x09, 0x0306, 1, 70}, report);
  EXPECT_EQ(NerinAction::getFWProfileName(2).value, std::nullopt);
}

TEST_F(ProfileName, IsLoggedWhenItIsReadAndMeasuredWhenItIsWritten) {
  std::vector<std::string> lines;
  (*NerinAction::sysDeviceReq)->setIsPrintMsg(false);
  LXLogger::setObserver([&](LXLogger::Level, std::string_view line) { lines.emplace_back(line); });
  NerinAction::getFWProfileName(0).value;
  EXPECT_TRUE(NerinAction::setFWProfileName(0, std::string(12, 'n')).isDone());
  LXLogger::setObserver({});
  const std::string checksum = hexOf(mouse().nameReport(0).subspan(3, 1));
  EXPECT_THAT(lines, ElementsAre("resultStr=Profile#1", "12", checksum, "c"));
}

}  // namespace
