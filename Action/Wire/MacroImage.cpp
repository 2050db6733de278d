#include "Action/Wire/MacroImage.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/KeyCodes.h"
#include "Action/Wire/ProfileImage.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/Utf8.h"

namespace {

constexpr std::uint8_t macroReport = 4;
constexpr std::uint8_t holdsMacro = 0xB0;
constexpr std::uint32_t positionsPerSlot = 19;

constexpr std::size_t atRepeatType = 4;
constexpr std::size_t atRepeatCount = 5;
constexpr std::size_t atCount = 7;
constexpr std::size_t atNameLength = 9;
constexpr std::size_t atName = 10;
constexpr std::size_t atStream = 52;
constexpr std::size_t checksumEnd = 2052;

constexpr std::size_t maximumNameBytes = 42;
constexpr std::uint32_t maximumCount = 2000;
constexpr std::uint8_t delayRecord = 1;
constexpr std::size_t delayRecordSize = 3;
constexpr std::uint8_t releaseFlag = 128;

// Appends to the event stream of a report until something no longer fits.
class StreamWriter {
 public:
  explicit StreamWriter(NerinAction::MacroReport& report) : m_report(report) {}

  void code(std::uint32_t code) {
    if (reserve(1)) {
      m_report[m_at++] = static_cast<std::uint8_t>(code);
    }
  }

  void delay(std::int32_t milliseconds) {
    if (reserve(delayRecordSize)) {
      const auto value = static_cast<std::uint32_t>(milliseconds);
      m_report[m_at++] = delayRecord;
      m_report[m_at++] = static_cast<std::uint8_t>(value);
      m_report[m_at++] = static_cast<std::uint8_t>(value >> 8U);
    }
  }

 private:
  bool reserve(std::size_t size) {
    m_isFull = m_isFull || m_at + size > m_report.size();
    return !m_isFull;
  }

  NerinAction::MacroReport& m_report;
  std::size_t m_at = atStream;
  bool m_isFull = false;
};

// A combination is pressed key by key and let go in the opposite order.
void writeCombination(const MacroKeyInfo& event, StreamWriter& stream) {
  const auto entry = NerinAction::getMacroMenuByFunid(event.keyCode());
  if (!entry) {
    return;
  }
  const std::vector<std::int32_t> keys = entry->usedKeys();
  const auto codeOf = [](std::int32_t key) {
    return NerinAction::GetFWKeyCode(static_cast<std::uint32_t>(key));
  };
  for (const std::int32_t key : keys) {
    stream.code(codeOf(key));
  }
  std::for_each(keys.rbegin(), keys.rend(),
                [&](std::int32_t key) { stream.code(codeOf(key) + releaseFlag); });
}

void writeEvent(const MacroKeyInfo& event, StreamWriter& stream) {
  if (event.keyFlag() == MacroKeyInfo::Function) {
    writeCombination(event, stream);
    return;
  }
  const bool isMouse =
      event.keyFlag() == MacroKeyInfo::MousePress || event.keyFlag() == MacroKeyInfo::MouseRelease;
  const bool isRelease =
      event.keyFlag() == MacroKeyInfo::KeyRelease || event.keyFlag() == MacroKeyInfo::MouseRelease;
  const auto key = static_cast<std::uint32_t>(event.keyCode());
  stream.code((isMouse ? key : NerinAction::GetFWKeyCode(key)) + (isRelease ? releaseFlag : 0));
  if (event.delay() > 0) {
    stream.delay(event.delay());
  }
}

void writeName(const std::string& name, NerinAction::MacroReport& report) {
  LXLogger::debug(std::to_string(2 * utf8::lengthInUtf16(name)));
  if (!utf8::isAscii(name) || name.starts_with(NerinAction::generatedMacroName)) {
    return;
  }
  report[atNameLength] = static_cast<std::uint8_t>(std::min(2 * name.size(), maximumNameBytes));
  // A longer name runs on behind its field; the stream is written over it afterwards.
  for (std::size_t i = 0; i < name.size() && atName + 2 * i < report.size(); ++i) {
    report[atName + 2 * i] = static_cast<std::uint8_t>(name[i]);
  }
}

std::optional<std::string> readName(const NerinAction::MacroReport& report) {
  const std::size_t length = std::min<std::size_t>(report[atNameLength], maximumNameBytes) / 2;
  std::string name;
  for (std::size_t i = 0; i < length && report[atName + 2 * i] != 0; ++i) {
    name.push_back(static_cast<char>(report[atName + 2 * i]));
  }
  return name.empty() || !utf8::isAscii(name) ? std::nullopt : std::optional(std::move(name));
}

std::vector<NerinAction::MacroStreamEvent> readEvents(const NerinAction::MacroReport& report) {
  std::vector<NerinAction::MacroStreamEvent> events;
  const std::uint32_t announced = report[atCount] + 256U * report[atCount + 1];
  const std::size_t end = atStream + std::min(announced, maximumCount);
  std::size_t at = atStream;
  while (at < end) {
    const std::uint8_t code = report[at];
    if (code != delayRecord) {
      const bool isRelease = code > releaseFlag;
      events.push_back(
          {static_cast<std::uint8_t>(isRelease ? code - releaseFlag : code), isRelease, 0});
      ++at;
      continue;
    }
    if (at + delayRecordSize > report.size()) {
      break;
    }
    if (!events.empty()) {
      events.back().delay = report[at + 1] + 256 * report[at + 2];
    }
    at += delayRecordSize;
  }
  return events;
}

// The mouse buttons' codes name no key, so that only the event's kind tells them apart.
std::shared_ptr<MacroKeyInfo> keyInfoOf(const NerinAction::MacroStreamEvent& event) {
  const bool isMouse = event.isMouseButton();
  const std::int32_t press = isMouse ? MacroKeyInfo::MousePress : MacroKeyInfo::KeyPress;
  const std::int32_t release = isMouse ? MacroKeyInfo::MouseRelease : MacroKeyInfo::KeyRelease;
  return std::make_shared<MacroKeyInfo>(
      static_cast<std::int32_t>(NerinAction::GetKeyCodeByFW(event.code)),
      event.isRelease ? release : press, event.delay);
}

// The macro that takes what was read: the one of that name, emptied, or a new one. Null when the
// catalogue is full.
std::shared_ptr<MacroInfo> macroFor(const std::string& name) {
  if (auto known = NerinAction::getMacroByName(name)) {
    known->keyInfoArr().clear();
    return known;
  }
  auto created = NerinAction::addMacorByName(name);
  if (created && isHaveNewName) {
    created->setIsNoDisplay(true);
  }
  return created;
}

bool isButton(int btnIndex) {
  return btnIndex >= 0 && btnIndex < static_cast<int>(buttonCount);
}

}  // namespace

std::uint8_t NerinAction::macroSlotOf(std::uint8_t slot, int btnIndex) {
  return static_cast<std::uint8_t>(slot * positionsPerSlot + devicePosition(btnIndex));
}

NerinAction::MacroReport NerinAction::encodeMacroReport(std::uint8_t macroSlot,
                                                        const _BTN_INFO& btnInfo,
                                                        const MacroInfo& macro) {
  MacroReport report{macroReport, 0, macroSlot};
  getMacroRepeatType(report[atRepeatType], report[atRepeatCount], btnInfo);
  report[6] = 1;
  const auto count = static_cast<std::uint32_t>(macro.getMacroCount());
  // Only the low byte is bounded; the mouse gets the high byte as it is.
  report[atCount] = static_cast<std::uint8_t>(std::min(count, maximumCount));
  report[atCount + 1] = static_cast<std::uint8_t>(count >> 8U);
  writeName(macro.nameStr().value_or(""), report);
  StreamWriter stream(report);
  for (const auto& event : macro.keyInfoArr()) {
    writeEvent(*event, stream);
  }
  report[3] = GetChecksum(std::span(report).subspan(4, checksumEnd - 4));
  return report;
}

std::optional<NerinAction::MacroStream> NerinAction::decodeMacroReport(const MacroReport& report) {
  if (report[0] != holdsMacro) {
    return std::nullopt;
  }
  return MacroStream{report[atRepeatType], report[atRepeatCount], readName(report),
                     readEvents(report)};
}

std::optional<NerinAction::MacroStream> NerinAction::readMacroStream(std::uint8_t slot,
                                                                     int btnIndex) {
  setReadyPro(macroSlotOf(slot, btnIndex), readyMacro);
  MacroReport report{macroReport};
  GetCommand2(report);
  return decodeMacroReport(report);
}

bool NerinAction::setFWMacroData(std::uint8_t slot, int btnIndex) {
  if (!isButton(btnIndex)) {
    return false;
  }
  const std::uint8_t macroSlot = macroSlotOf(slot, btnIndex);
  setReadyPro2(macroSlot, readyMacro);
  const _BTN_INFO& button = currFWProfile.btnInfo[btnIndex];
  const auto macro = getMacroById(static_cast<std::int32_t>(button.MacroID));
  if (!macro) {
    return false;
  }
  MacroReport report = encodeMacroReport(macroSlot, button, *macro);
  LXLogger::debug(std::to_string(report[3]));
  SetCommand2(report);
  pauseAfterReport();
  return true;
}

void NerinAction::getFWMacroData(std::uint8_t slot, int btnIndex) {
  if (!isButton(btnIndex)) {
    return;
  }
  const auto stream = readMacroStream(slot, btnIndex);
  if (!stream) {
    return;
  }
  _BTN_INFO& button = currFWProfile.btnInfo[btnIndex];
  button.KeyBit[0] = getMacroRepeatTypeFromFW(stream->repeatType, stream->repeatCount);
  button.KeyBit[1] = getMacroRepeatCountFromFW(stream->repeatCount);
  LXLogger::debug("macroNameStr=" + stream->name.value_or(""));
  if (!stream->name) {
    isHaveNewName = true;
  }
  const std::string name = stream->name.value_or(generatedMacroName + ("_" + std::to_string(slot)) +
                                                 "_" + std::to_string(btnIndex));
  const auto macro = macroFor(name);
  button.MacroID = macro ? static_cast<std::uint32_t>(macro->macroId()) : 0;
  if (macro) {
    for (const MacroStreamEvent& event : stream->events) {
      macro->keyInfoArr().push_back(keyInfoOf(event));
    }
  }
  refreshMenuList();
}
