#include "Action/Service/DaemonMessages.h"

#include "Action/Library/PreferenceKeys.h"
#include "Action/Library/SupportFolder.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/PreferenceFile.h"

namespace {

// The setting that changed: the first value of a setting message.
enum Setting : std::int32_t {
  SettingProfile = 1,
  SettingMode = 2,
  SettingDpi = 3,
  SettingRate = 4
};

void post(std::int32_t code, const std::optional<LXUserInfo>& userInfo) {
  LXPlatform::current().notificationCenter->postNotificationName("NerinSettingChange",
                                                                 std::to_string(code), userInfo);
}

}  // namespace

void NerinAction::sendMessageToDaemon(std::int32_t code) {
  post(code, std::nullopt);
}

void NerinAction::sendMessageToDaemon(std::int32_t code,
                                      const std::vector<DaemonValue>& valueArrs) {
  LXUserInfo userInfo;
  for (std::size_t i = 0; i < valueArrs.size(); ++i) {
    userInfo["value" + std::to_string(i + 1)] = valueArrs[i];
  }
  post(code, userInfo);
}

void NerinAction::sendProfileChangeToDaemon(std::int32_t slot) {
  sendMessageToDaemon(MessageSettingChanged, {SettingProfile, slot});
}

void NerinAction::sendModeChangeToDaemon(std::int32_t mode) {
  sendMessageToDaemon(MessageSettingChanged, {SettingMode, mode});
}

void NerinAction::sendDPiChangeToDaemon(std::int32_t level, std::int32_t x, std::int32_t y) {
  sendMessageToDaemon(MessageSettingChanged, {SettingDpi, level, x, y});
}

void NerinAction::sendRateChangeToDaemon(std::int32_t rate) {
  sendMessageToDaemon(MessageSettingChanged, {SettingRate, rate});
}

void NerinAction::sendRelaunchDaemon() {
  sendMessageToDaemon(MessageRelaunch);
}

void NerinAction::setIsDpiTem(bool isDpiTem) {
  sendMessageToDaemon(MessageDpiTemporary, {isDpiTem});
}

bool NerinAction::daemonGetOsd() {
  return PreferenceFile(preferenceFilePath()).boolFor(preferencekeys::osd).value_or(true);
}

bool NerinAction::daemonGetSwitchSlots() {
  return PreferenceFile(preferenceFilePath()).boolFor(preferencekeys::switchSlots).value_or(true);
}

std::optional<std::string> NerinAction::daemonGetLaunchPath(int slot, int bIndex) {
  return PreferenceFile(preferenceFilePath()).stringFor(preferencekeys::launchPath(slot, bIndex));
}

std::optional<std::string> NerinAction::daemonGetLinkAppPath(int slot) {
  const PreferenceFile preferences(preferenceFilePath());
  const bool isActive =
      preferences.boolFor(preferencekeys::linkApp, preferencekeys::linkIsActive(slot))
          .value_or(false);
  return isActive ? preferences.stringFor(preferencekeys::linkApp, preferencekeys::profile(slot))
                  : std::nullopt;
}
