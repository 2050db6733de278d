#include <array>

#include <gtest/gtest.h>

#include "Kit/Core/LXPlatform.h"

namespace {

class Platform : public testing::Test {
 protected:
  ~Platform() override { LXPlatform::install({}); }
};

class PlatformRequester final : public LXDeviceRequester {
 public:
  void setIsPrintMsg(bool) override {}
  void listenDevWithVid(std::uint16_t, std::uint16_t) override {}
  bool isDevOn() override { return true; }
  bool sendDeviceRequest(LXDeviceRequest&) override { return true; }
  void resetCurrDevice() override {}
};

}  // namespace

TEST_F(Platform, IsHarmlessBeforeAnyIsInstalled) {
  const LXPlatform& platform = LXPlatform::current();
  EXPECT_TRUE(platform.homeFolder.empty());
  EXPECT_TRUE(platform.resourceFolder.empty());
  EXPECT_EQ(platform.bundleIdentifier, "com.corvex.NerinOption");
  EXPECT_FALSE(platform.preferredLanguage);
  EXPECT_FALSE(platform.open("/"));
  platform.sleep(std::chrono::hours(1));
  platform.notificationCenter->postNotificationName("name", "object", std::nullopt);
  platform.notificationCenter->addObserver("name", [](const std::string&, const LXUserInfo&) {});
  platform.notificationCenter->removeObserver("name");
}

TEST_F(Platform, HasNoMouseBeforeAnyIsInstalled) {
  const auto requester = LXDeviceRequester::shareDeviceReq();
  requester->setIsPrintMsg(true);
  requester->listenDevWithVid(1, 2);
  requester->resetCurrDevice();
  EXPECT_FALSE(requester->isDevOn());
  std::array<std::uint8_t, 2> data{8, 9};
  LXDeviceRequest request{.data = data};
  EXPECT_FALSE(requester->sendDeviceRequest(request));
  EXPECT_EQ(data, (std::array<std::uint8_t, 2>{8, 9}));
  EXPECT_EQ(request.wLenDone, 0U);
}

TEST_F(Platform, GivesWhatWasInstalled) {
  const auto requester = std::make_shared<PlatformRequester>();
  std::chrono::microseconds slept{};
  LXPlatform platform;
  platform.homeFolder = "/home/somebody";
  platform.deviceRequester = requester;
  platform.sleep = [&](std::chrono::microseconds time) { slept = time; };
  platform.open = [](const std::string& what) { return what == "it"; };
  LXPlatform::install(platform);
  EXPECT_EQ(LXPlatform::current().homeFolder, "/home/somebody");
  EXPECT_EQ(LXDeviceRequester::shareDeviceReq(), requester);
  LXPlatform::current().sleep(std::chrono::milliseconds(30));
  EXPECT_EQ(slept, std::chrono::microseconds(30000));
  EXPECT_TRUE(LXPlatform::current().open("it"));
}

TEST_F(Platform, FillsUpWhatWasLeftEmpty) {
  LXPlatform platform;
  platform.homeFolder = "/home/somebody";
  LXPlatform::install(platform);
  ASSERT_TRUE(LXPlatform::current().deviceRequester);
  EXPECT_FALSE(LXPlatform::current().deviceRequester->isDevOn());
  ASSERT_TRUE(LXPlatform::current().notificationCenter);
  LXPlatform::current().sleep(std::chrono::hours(1));
  EXPECT_EQ(LXPlatform::current().documentsFolder(), "/home/somebody");
  EXPECT_FALSE(LXPlatform::current().open("it"));
}
