#include "Action/Wire/SlotReports.h"

#include <algorithm>
#include <span>

#include "Action/Record/Records.h"
#include "Action/Wire/ReportLayout.h"

namespace {

constexpr std::string_view mark = "NRS1";
constexpr std::size_t atMacros = mark.size() + reportlayout::nameSize + reportlayout::imageSize;
constexpr std::size_t sumSize = 1;

std::uint8_t sumOf(std::string_view bytes) {
  const auto* first = reinterpret_cast<const std::uint8_t*>(bytes.data());
  return NerinAction::GetChecksum(std::span(first, bytes.size()));
}

template <typename Report>
void append(std::string& bytes, const Report& report) {
  bytes.append(reinterpret_cast<const char*>(report.data()), report.size());
}

template <typename Report>
void take(Report& report, std::string_view bytes, std::size_t at) {
  std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), report.size(), report.begin());
}

std::optional<int> buttonOf(std::uint8_t slot, std::uint8_t macroSlot) {
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    if (NerinAction::macroSlotOf(slot, index) == macroSlot) {
      return index;
    }
  }
  return std::nullopt;
}

}  // namespace

std::string NerinAction::encodeSlotFile(const SlotReports& reports) {
  std::string bytes(mark);
  append(bytes, reports.name);
  append(bytes, reports.image);
  for (const auto& [index, macro] : reports.macros) {
    append(bytes, macro);
  }
  bytes.push_back(static_cast<char>(sumOf(bytes)));
  return bytes;
}

std::optional<NerinAction::SlotReports> NerinAction::decodeSlotFile(std::string_view bytes,
                                                                    std::uint8_t slot) {
  if (bytes.size() < atMacros + sumSize ||
      (bytes.size() - atMacros - sumSize) % reportlayout::macroSize != 0 ||
      !bytes.starts_with(mark) || sumOf(bytes) != 0) {
    return std::nullopt;
  }
  SlotReports reports;
  take(reports.name, bytes, mark.size());
  take(reports.image, bytes, mark.size() + reportlayout::nameSize);
  if (!isWholeAnswer(reports.name, reportlayout::name, slot) ||
      !isWholeAnswer(reports.image, reportlayout::image, slot)) {
    return std::nullopt;
  }
  for (std::size_t at = atMacros; at + sumSize < bytes.size(); at += reportlayout::macroSize) {
    MacroReport macro{};
    take(macro, bytes, at);
    const auto button = buttonOf(slot, macro[reportlayout::atSlot]);
    if (!button || !decodeMacroReport(macro) ||
        !isWholeMacroAnswer(macro, macro[reportlayout::atSlot]) ||
        !reports.macros.emplace(*button, macro).second) {
      return std::nullopt;
    }
  }
  return reports;
}
