#include <set>

#include <gmock/gmock.h>

#include "Action/Service/DaemonMessages.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/JsonFixture.h"

namespace {

using testing::Eq;
using testing::Optional;

class DaemonMessages : public ActionTest {
 protected:
  // The last posted message.
  RecordingNotificationCenter::Post last() const {
    EXPECT_FALSE(posts().empty());
    return posts().empty() ? RecordingNotificationCenter::Post{} : posts().back();
  }

  void expectLast(const std::string& code, const std::optional<LXUserInfo>& userInfo) const {
    EXPECT_EQ(last().name, protocolTable("notifications").at("to_service").at("name"));
    EXPECT_EQ(last().object, code);
    EXPECT_EQ(last().userInfo, userInfo);
  }
};

TEST_F(DaemonMessages, ACodeAloneHasNoUserInfo) {
  NerinAction::sendMessageToDaemon(101);
  expectLast("101", std::nullopt);
  NerinAction::sendMessageToDaemon(-7);
  expectLast("-7", std::nullopt);
}

TEST_F(DaemonMessages, NoValuesAreAnEmptyDictionary) {
  NerinAction::sendMessageToDaemon(101, {});
  EXPECT_THAT(last().userInfo, Optional(Eq(LXUserInfo{})));
}

TEST_F(DaemonMessages, ValuesAreNumberedFromOne) {
  NerinAction::sendMessageToDaemon(5, {7, true, -1});
  expectLast("5", LXUserInfo{{"value1", 7}, {"value2", true}, {"value3", -1}});
  std::vector<NerinAction::DaemonValue> many(12, 3);
  NerinAction::sendMessageToDaemon(5, many);
  EXPECT_EQ(last().userInfo->size(), 12U);
  EXPECT_TRUE(last().userInfo->contains("value12"));
}

TEST_F(DaemonMessages, EveryMessageHasTheCodeAndValuesOfTheTable) {
  NerinAction::sendProfileChangeToDaemon(7);
  expectLast("111", LXUserInfo{{"value1", 1}, {"value2", 7}});
  NerinAction::sendModeChangeToDaemon(1);
  expectLast("111", LXUserInfo{{"value1", 2}, {"value2", 1}});
  NerinAction::sendDPiChangeToDaemon(4, 16, 32);
  expectLast("111", LXUserInfo{{"value1", 3}, {"value2", 4}, {"value3", 16}, {"value4", 32}});
  NerinAction::sendRateChangeToDaemon(3);
  expectLast("111", LXUserInfo{{"value1", 4}, {"value2", 3}});
  NerinAction::sendRelaunchDaemon();
  expectLast("121", std::nullopt);
  NerinAction::setIsDpiTem(true);
  expectLast("122", LXUserInfo{{"value1", true}});
  NerinAction::setIsDpiTem(false);
  expectLast("122", LXUserInfo{{"value1", false}});
  NerinAction::sendMessageToDaemon(NerinAction::MessageOsdChanged, {true});
  expectLast("110", LXUserInfo{{"value1", true}});
  NerinAction::sendMessageToDaemon(NerinAction::MessageProfileApplied);
  expectLast("101", std::nullopt);

  std::set<std::string> listed;
  for (const auto& row : protocolTable("notifications").at("to_service").at("codes")) {
    listed.insert(std::to_string(row.at("code").get<int>()));
  }
  std::set<std::string> posted;
  for (const auto& post : posts()) {
    posted.insert(post.object);
  }
  EXPECT_EQ(posted, listed);
}

TEST_F(DaemonMessages, TheServiceReadsTheFileAfresh) {
  EXPECT_TRUE(library().setIsOSD(false));
  EXPECT_TRUE(library().setLaunchPath("/a", 1, 2));
  EXPECT_FALSE(NerinAction::daemonGetOsd());
  writeText(preferenceFile(),
            "<plist version=\"1.0\"><dict><key>OSDTag</key><true/></dict></plist>");
  EXPECT_TRUE(NerinAction::daemonGetOsd());
  EXPECT_EQ(NerinAction::daemonGetLaunchPath(1, 2), std::nullopt);
}

TEST_F(DaemonMessages, AReaderWritesNothing) {
  EXPECT_TRUE(NerinAction::daemonGetOsd());
  EXPECT_EQ(NerinAction::daemonGetLaunchPath(0, 0), std::nullopt);
  EXPECT_EQ(NerinAction::daemonGetLinkAppPath(0), std::nullopt);
  EXPECT_FALSE(std::filesystem::exists(preferenceFile()));
}

}  // namespace
