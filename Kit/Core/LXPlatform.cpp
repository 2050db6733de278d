#include "Kit/Core/LXPlatform.h"

#include <utility>

namespace {

class NoDeviceRequester final : public LXDeviceRequester {
 public:
  void setIsPrintMsg(bool) override {}
  void listenDevWithVid(std::uint16_t, std::uint16_t) override {}
  bool isDevOn() override { return false; }
  bool sendDeviceRequest(LXDeviceRequest&) override { return false; }
  void resetCurrDevice() override {}
};

class NoNotificationCenter final : public LXNotificationCenter {
 public:
  void postNotificationName(const std::string&, const std::string&,
                            const std::optional<LXUserInfo>&) override {}
  void addObserver(const std::string&, Observer) override {}
  void removeObserver(const std::string&) override {}
};

LXPlatform withHarmlessDefaults(LXPlatform platform) {
  if (platform.userFolders.support.empty()) {
    platform.userFolders = UserFolders::inLibrary(platform.homeFolder, platform.bundleIdentifier);
  }
  if (!platform.deviceRequester) {
    platform.deviceRequester = std::make_shared<NoDeviceRequester>();
  }
  if (!platform.notificationCenter) {
    platform.notificationCenter = std::make_shared<NoNotificationCenter>();
  }
  if (!platform.watchPresence) {
    platform.watchPresence = [](const std::function<void()>&) { return nullptr; };
  }
  if (!platform.hasService) {
    platform.hasService = [] { return false; };
  }
  if (!platform.watchService) {
    platform.watchService = [](const std::function<void(bool)>&) { return nullptr; };
  }
  if (!platform.relaunch) {
    platform.relaunch = [] {};
  }
  if (!platform.now) {
    platform.now = std::chrono::steady_clock::now;
  }
  if (!platform.sleep) {
    platform.sleep = [](std::chrono::microseconds) {};
  }
  if (!platform.documentsFolder) {
    platform.documentsFolder = [home = platform.homeFolder] { return home; };
  }
  if (!platform.programName) {
    platform.programName = [](const std::string& path) {
      return std::filesystem::path(path).stem().string();
    };
  }
  if (!platform.showBusy) {
    platform.showBusy = [](bool) {};
  }
  if (!platform.open) {
    platform.open = [](const std::string&) { return false; };
  }
  if (!platform.showInfoMessage) {
    platform.showInfoMessage = [](const std::string&) {};
  }
  if (!platform.chooseInfoMessage) {
    platform.chooseInfoMessage = [](const std::string&) { return false; };
  }
  return platform;
}

LXPlatform& installed() {
  static LXPlatform platform = withHarmlessDefaults({});
  return platform;
}

}  // namespace

const LXPlatform& LXPlatform::current() {
  return installed();
}

void LXPlatform::install(LXPlatform platform) {
  installed() = withHarmlessDefaults(std::move(platform));
}

std::shared_ptr<LXDeviceRequester> LXDeviceRequester::shareDeviceReq() {
  return LXPlatform::current().deviceRequester;
}
