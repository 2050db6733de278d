#include "Action/Wire/MacroImage.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "Action/Record/Limits.h"
#include "Action/Wire/ProfileImage.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/Utf8.h"

namespace {

constexpr std::uint8_t holdsMacro = 0xB0;
constexpr std::uint32_t positionsPerSlot = 19;

constexpr std::size_t atRepeatType = 4;
constexpr std::size_t atRepeatCount = 5;
constexpr std::size_t atCount = 7;
constexpr std::size_t atNameLength = 9;
constexpr std::size_t atName = 10;
constexpr std::size_t atStream = 52;

constexpr std::size_t maximumNameBytes = 42;
constexpr std::uint8_t delayRecord = 1;
constexpr std::uint32_t delayRecordSize = 3;
constexpr std::uint8_t releaseFlag = 128;

// Appends to the event stream of a report until an item no longer fits.
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

void writeName(std::string_view name, NerinAction::MacroReport& report) {
  LXLogger::debug(std::to_string(2 * utf8::lengthInUtf16(name)));
  if (!utf8::isAscii(name) || name.starts_with(NerinAction::generatedMacroName)) {
    return;
  }
  report[atNameLength] = static_cast<std::uint8_t>(std::min(2 * name.size(), maximumNameBytes));
  // A name that is too long overflows its field; the stream then overwrites the rest.
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
  const std::size_t end = atStream + std::min(announced, limits::macroBytes);
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

}  // namespace

std::uint8_t NerinAction::macroSlotOf(std::uint8_t slot, int btnIndex) {
  return static_cast<std::uint8_t>(slot * positionsPerSlot + devicePosition(btnIndex));
}

NerinAction::MacroReport NerinAction::encodeMacroReport(std::uint8_t macroSlot,
                                                        const MacroStream& macro) {
  MacroReport report{reportlayout::macro, 0, macroSlot};
  report[atRepeatType] = macro.repeatType;
  report[atRepeatCount] = macro.repeatCount;
  report[6] = 1;
  writeName(macro.name ? std::string_view(*macro.name) : std::string_view(), report);
  StreamWriter stream(report);
  std::uint32_t count = 0;
  for (const MacroStreamEvent& event : macro.events) {
    stream.code(event.code + (event.isRelease ? releaseFlag : 0U));
    ++count;
    if (event.delay > 0) {
      stream.delay(event.delay);
      count += delayRecordSize;
    }
  }
  // Only the low byte is bounded; the mouse gets the high byte as it is.
  report[atCount] = static_cast<std::uint8_t>(std::min(count, limits::macroBytes));
  report[atCount + 1] = static_cast<std::uint8_t>(count >> 8U);
  report[reportlayout::atChecksum] = checksumOfReport(report);
  return report;
}

bool NerinAction::isWholeMacroAnswer(const MacroReport& report, std::uint8_t macroSlot) {
  return report[0] != holdsMacro || isWholeAnswer(report, holdsMacro, macroSlot);
}

std::optional<NerinAction::MacroStream> NerinAction::decodeMacroReport(const MacroReport& report) {
  if (report[0] != holdsMacro) {
    return std::nullopt;
  }
  return MacroStream{report[atRepeatType], report[atRepeatCount], readName(report),
                     readEvents(report)};
}
