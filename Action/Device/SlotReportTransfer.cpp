#include "Action/Device/SlotReportTransfer.h"

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Record/Records.h"
#include "Action/Wire/ReportLayout.h"

namespace {

constexpr int maximumReads = 3;

Outcome answered(SlotStep step, bool isWhole) {
  return isWhole ? Outcome() : Outcome(step, std::make_error_code(std::errc::bad_message));
}

Outcome readName(std::uint8_t slot, NerinAction::NameReport& report) {
  Outcome outcome = NerinAction::setReadyPro(slot, NerinAction::readyProfile, SlotStep::ReadName);
  report = {reportlayout::name, 0, slot};
  outcome += Outcome(SlotStep::ReadName, NerinAction::GetCommand2(report));
  NerinAction::pauseAfterReport();
  outcome +=
      answered(SlotStep::ReadName, NerinAction::isWholeAnswer(report, reportlayout::name, slot));
  return outcome;
}

Outcome readMacro(std::uint8_t macroSlot, NerinAction::MacroReport& report) {
  Outcome outcome =
      NerinAction::setReadyPro(macroSlot, NerinAction::readyMacro, SlotStep::ReadMacro);
  report = {reportlayout::macro};
  outcome += Outcome(SlotStep::ReadMacro, NerinAction::GetCommand2(report));
  outcome += answered(SlotStep::ReadMacro, NerinAction::isWholeMacroAnswer(report, macroSlot));
  return outcome;
}

NerinAction::ReadResult<NerinAction::SlotReports> readOnce(std::uint8_t slot) {
  const NerinAction::TransferSeries series;
  NerinAction::ReadResult<NerinAction::SlotReports> read;
  read.outcome = readName(slot, read.value.name);
  if (!read.outcome.isDone()) {
    return read;
  }
  const auto image = NerinAction::readProfileImage(slot);
  read.outcome += image.outcome;
  if (!read.outcome.isDone()) {
    return read;
  }
  read.value.image = image.value;
  _Nerin_PROFILE record{};
  const NerinAction::ButtonSet buttons =
      NerinAction::decodeProfileImage(image.value, record, NerinAction::singleFunctionIdOf);
  for (int index = 0; index < static_cast<int>(buttonCount) && read.outcome.isDone(); ++index) {
    NerinAction::MacroReport macro{};
    if (buttons[static_cast<std::size_t>(index)]) {
      read.outcome += readMacro(NerinAction::macroSlotOf(slot, index), macro);
      if (NerinAction::decodeMacroReport(macro)) {
        read.value.macros[index] = macro;
      }
    }
  }
  return read;
}

}  // namespace

NerinAction::ReadResult<NerinAction::SlotReports> NerinAction::readSlotReports(std::uint8_t slot) {
  ReadResult<SlotReports> read;
  for (int attempt = 0; attempt < maximumReads; ++attempt) {
    read = readOnce(slot);
    if (read.outcome.isDone() || isMouseGone(read.outcome.failure()->error)) {
      break;
    }
  }
  return read;
}

Outcome NerinAction::writeSlotReports(std::uint8_t slot, const SlotReports& reports) {
  const TransferSeries series;
  NameReport name = reports.name;
  Outcome outcome(SlotStep::WriteName, SetCommand2(name));
  pauseAfterReport();
  outcome += refreshDeviceData();
  for (const auto& [index, held] : reports.macros) {
    MacroReport macro = held;
    // A read tells by this byte that there is a macro; a write has the number of the report here.
    macro[0] = reportlayout::macro;
    outcome += setReadyPro2(macroSlotOf(slot, index), readyMacro, SlotStep::WriteMacro);
    outcome += Outcome(SlotStep::WriteMacro, SetCommand2(macro));
    pauseAfterReport();
  }
  ProfileImage image = reports.image;
  outcome += Outcome(SlotStep::WriteImage, SetCommand2(image));
  pauseAfterReport();
  outcome += refreshDeviceData();
  return outcome;
}
