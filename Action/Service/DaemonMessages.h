#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// Messages to the background service, and what it reads from the shared preference file. Messages
// are sent without waiting for an answer.
namespace NerinAction {

enum DaemonMessage : std::int32_t {
  MessageProfileApplied = 101,
  MessageOsdChanged = 110,
  MessageSettingChanged = 111,
  MessageRelaunch = 121,
  MessageDpiTemporary = 122,
};

using DaemonValue = std::variant<bool, std::int32_t>;

void sendMessageToDaemon(std::int32_t code);
// Numbers the values from 1. Without values, the message carries an empty dictionary.
void sendMessageToDaemon(std::int32_t code, const std::vector<DaemonValue>& valueArrs);

void sendProfileChangeToDaemon(std::int32_t slot);
void sendModeChangeToDaemon(std::int32_t mode);
void sendDPiChangeToDaemon(std::int32_t level, std::int32_t x, std::int32_t y);
void sendRateChangeToDaemon(std::int32_t rate);
void sendRelaunchDaemon();
// Says whether the DPI settings on the mouse are only a trial.
void setIsDpiTem(bool isDpiTem);

// For the service: each call reads the preference file again.
bool daemonGetOsd();
bool daemonGetSwitchSlots();
std::optional<std::string> daemonGetLaunchPath(int slot, int bIndex);
// No value when the slot has no active link.
std::optional<std::string> daemonGetLinkAppPath(int slot);

}  // namespace NerinAction
