#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// What the background service is told, and what it reads from the shared preference file. Messages
// are posted and nothing is awaited.
namespace NerinAction {

// Message codes.
enum DaemonMessage : std::int32_t {
  MessageProfileApplied = 101,
  MessageOsdChanged = 110,
  MessageSettingChanged = 111,
  MessageRelaunch = 121,
  MessageDpiTemporary = 122,
};

using DaemonValue = std::variant<bool, std::int32_t>;

void sendMessageToDaemon(std::int32_t code);
// With values, numbered from 1; no values are still an (empty) dictionary.
void sendMessageToDaemon(std::int32_t code, const std::vector<DaemonValue>& valueArrs);

void sendProfileChangeToDaemon(std::int32_t slot);
void sendModeChangeToDaemon(std::int32_t mode);
void sendDPiChangeToDaemon(std::int32_t level, std::int32_t x, std::int32_t y);
void sendRateChangeToDaemon(std::int32_t rate);
void sendRelaunchDaemon();
// The DPI settings on the mouse are being tried out, or are kept or abandoned.
void setIsDpiTem(bool isDpiTem);

// The service's side: each reads the preference file afresh.
bool daemonGetOsd();
std::optional<std::string> daemonGetLaunchPath(int slot, int bIndex);
// Nothing when the slot has no link in force.
std::optional<std::string> daemonGetLinkAppPath(int slot);

}  // namespace NerinAction
