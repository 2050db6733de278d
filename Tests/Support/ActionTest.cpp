#include "Tests/Support/ActionTest.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <numeric>
#include <stdexcept>

#include "Action/Library/SupportFolder.h"
#include "Action/NerinAction.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/ObservedDeviceRequester.h"
#include "Kit/Core/ProcessWide.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* bundle = "com.corvex.NerinOption";

std::string traceOf(const LXDeviceRequest& request, bool isDone) {
  const std::array<std::uint8_t, 2> value{static_cast<std::uint8_t>(request.wValue >> 8U),
                                          static_cast<std::uint8_t>(request.wValue)};
  std::string line = request.bmRequestType == 0x21 ? "SET " : "GET ";
  line += hexOf(value) + ' ' + std::to_string(request.wIndex) + ' ' + hexOf(request.data);
  return isDone ? line : line + " failed";
}

}  // namespace

std::string hexOf(std::span<const std::uint8_t> bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4U];
    text += digits[byte & 0x0FU];
  }
  return text;
}

Bytes bytesOfHex(std::string_view hex) {
  Bytes bytes;
  for (std::size_t at = 0; at + 1 < hex.size(); at += 2) {
    bytes.push_back(
        static_cast<std::uint8_t>(std::stoi(std::string(hex.substr(at, 2)), nullptr, 16)));
  }
  return bytes;
}

std::uint8_t checksumOf(std::span<const std::uint8_t> report) {
  const auto covered = report.subspan(4, report.size() - 5);
  return static_cast<std::uint8_t>(-std::accumulate(covered.begin(), covered.end(), 0));
}

ActionTest::ActionTest() : ActionTest(std::make_shared<VirtualMouse>(), nullptr) {}

ActionTest::ActionTest(std::shared_ptr<VirtualMouse> mouse,
                       std::shared_ptr<LXDeviceRequester> requester)
    : m_resources(NERIN_RESOURCES), m_mouse(std::move(mouse)), m_requester(std::move(requester)) {
  if (!m_requester) {
    m_requester = std::make_shared<VirtualDeviceRequester>(m_mouse);
  }
  install();
  endProgram();
}

ActionTest::~ActionTest() {
  endProgram();
  LXPlatform::install({});
}

void ActionTest::install() {
  LXPlatform platform;
  platform.homeFolder = home();
  platform.resourceFolder = m_resources;
  platform.preferredLanguage = m_language;
  platform.notificationCenter = m_notifications;
  platform.sleep = [this](std::chrono::microseconds pause) {
    m_trace.push_back("SLEEP " + std::to_string(pause.count() / 1000));
    if (m_onPause) {
      m_onPause();
    }
  };
  platform.deviceRequester = std::make_shared<ObservedDeviceRequester>(
      m_requester,
      ObservedDeviceRequester::Observer{nullptr, [this](const LXDeviceRequest& request, bool done) {
                                          m_trace.push_back(traceOf(request, done));
                                        }});
  LXPlatform::install(std::move(platform));
}

void ActionTest::endProgram() {
  ProcessWideBase::resetAll();
}

void ActionTest::beginProgram() {
  NerinAction::initMenuList();
  NerinAction::refreshMenuList();
  NerinAction::startListenDev();
}

void ActionTest::setPreferredLanguage(std::optional<std::string> language) {
  m_language = std::move(language);
  install();
}

void ActionTest::setResourceFolder(fs::path folder) {
  m_resources = std::move(folder);
  install();
}

const std::vector<RecordingNotificationCenter::Post>& ActionTest::posts() const {
  return m_notifications->posts();
}

fs::path ActionTest::supportFolder() const {
  return home() / "Library" / "Application Support" / bundle;
}

std::vector<std::string> ActionTest::supportNames() const {
  std::vector<std::string> names = namesIn(supportFolder());
  for (const char* name : {".lock", ".Profiles.lock", "History"}) {
    std::erase(names, name);
  }
  return names;
}

fs::path ActionTest::preferenceFile() const {
  return home() / "Library" / "Preferences" / (std::string(bundle) + ".plist");
}

std::vector<std::string> ActionTest::sent() const {
  std::vector<std::string> lines;
  std::copy_if(m_trace.begin(), m_trace.end(), std::back_inserter(lines),
               [](const std::string& line) { return line.starts_with("SET"); });
  return lines;
}

std::shared_ptr<MacroInfo> ActionTest::addMacro(int id, const std::string& name,
                                                const Events& events) {
  auto macro = std::make_shared<MacroInfo>();
  macro->setMacroId(id);
  macro->setNameStr(name);
  for (const std::vector<int>& event : events) {
    macro->keyInfoArr().push_back(
        std::make_shared<MacroKeyInfo>(event.at(0), event.at(1), event.at(2)));
  }
  return NerinAction::macroStore->macroListArrs.emplace_back(std::move(macro));
}

ActionTest::Events ActionTest::eventsOf(const MacroInfo& macro) {
  Events events;
  for (const auto& event : macro.keyInfoArr()) {
    events.push_back({event->keyCode(), event->keyFlag(), event->delay()});
  }
  return events;
}

_BTN_INFO ActionTest::macroButton(std::uint32_t macroId, std::uint32_t mode, std::uint32_t count) {
  _BTN_INFO info = button(6, {mode, count}, ButtonTypeMacro);
  info.MacroID = macroId;
  return info;
}

_BTN_INFO ActionTest::button(std::uint32_t code, std::vector<std::uint32_t> keyBits,
                             std::uint32_t type) {
  _BTN_INFO info{};
  info.FuncID = code;
  info.FuncTableId = code;
  info.btnType = type;
  keyBits.resize(std::size(info.KeyBit));
  std::copy(keyBits.begin(), keyBits.end(), info.KeyBit);
  return info;
}

void ActionTest::putMacro(int macroSlot, Bytes report) {
  report.resize(VirtualMouse::macroReportSize);
  report[0] = 4;
  report[2] = static_cast<std::uint8_t>(macroSlot);
  report[3] = checksumOf(report);
  Bytes announcement{0xC4, 0x0B, report[2], 1, 0, 0, 0, 0};
  mouse().controlTransfer({0x21, 0x09, 0x0300, 0, 8}, announcement);
  mouse().controlTransfer({0x21, 0x09, 0x0304, 1, 2053}, report);
}

void ActionTest::putImage(int slot, Bytes report) {
  report.resize(VirtualMouse::imageReportSize);
  report[0] = 5;
  report[2] = static_cast<std::uint8_t>(slot);
  report[3] = checksumOf(report);
  mouse().controlTransfer({0x21, 0x09, 0x0305, 1, 154}, report);
}

std::string ActionTest::profileBytes(std::uint64_t id, const std::string& name,
                                     std::uint32_t poRate, bool isDefault) {
  std::string bytes(5264, '\0');
  for (std::size_t at = 0; at < 8; ++at) {
    bytes[at] = static_cast<char>(id >> (8 * at));
  }
  bytes[8] = isDefault ? 1 : 0;
  bytes.replace(9, name.size(), name);
  bytes[4996] = static_cast<char>(poRate);
  return bytes;
}

void ActionTest::putProfile(const std::string& fileName, std::uint64_t id, const std::string& name,
                            std::uint32_t poRate) const {
  writeText(libraryFolder() / fileName, profileBytes(id, name, poRate));
}

std::vector<std::string> ActionTest::namesOf(const ProfieController::Profiles& profiles) {
  std::vector<std::string> names;
  for (const auto& profile : profiles) {
    names.push_back(profile->name().value_or("(none)"));
  }
  return names;
}

std::vector<std::uint64_t> ActionTest::idsOf(const ProfieController::Profiles& profiles) {
  std::vector<std::uint64_t> ids;
  for (const auto& profile : profiles) {
    ids.push_back(profile->profileId());
  }
  return ids;
}
