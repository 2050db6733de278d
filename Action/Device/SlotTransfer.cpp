#include "Action/Device/SlotTransfer.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <utility>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Action/Record/Limits.h"
#include "Action/Wire/KeyCodes.h"
#include "Action/Wire/ProfileName.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"

namespace {

constexpr std::uint16_t activeSlotAddress = 25;
// How often a slot is read until all of it arrives.
constexpr int maximumReads = 3;

void logHex(unsigned value) {
  char text[16];
  std::snprintf(text, sizeof text, "%x", value);
  LXLogger::debug(text);
}

bool isButton(int btnIndex) {
  return btnIndex >= 0 && btnIndex < static_cast<int>(buttonCount);
}

// The macro to read into: the macro of that name, or a new one. Null when the catalogue is
// full.
std::shared_ptr<MacroInfo> macroFor(const std::string& name) {
  if (auto known = NerinAction::getMacroByName(name)) {
    return known;
  }
  auto created = NerinAction::addMacorByName(name);
  if (created && editState->isHaveNewName()) {
    created->setIsNoDisplay(true);
  }
  return created;
}

// Writes the macros of the buttons. Returns the buttons whose macro is not in the catalogue.
NerinAction::ReadResult<NerinAction::ButtonSet> writeMacros(std::uint8_t slot,
                                                            const NerinAction::ButtonSet& buttons) {
  NerinAction::ReadResult<NerinAction::ButtonSet> written;
  for (std::size_t index = 0; index < buttonCount; ++index) {
    if (buttons[index]) {
      const auto macro = NerinAction::setFWMacroData(slot, static_cast<int>(index));
      written.outcome += macro.outcome;
      written.value[index] = !macro.value;
    }
  }
  return written;
}

Outcome answered(SlotStep step, bool isWhole) {
  return isWhole ? Outcome() : Outcome(step, std::make_error_code(std::errc::bad_message));
}

// A macro that was read goes into the catalogue, under its name, and into currFWProfile's button.
void takeMacro(std::uint8_t slot, int btnIndex, const NerinAction::MacroStream& stream) {
  _BTN_INFO& button = editState->currFWProfile().btnInfo[btnIndex];
  button.KeyBit[0] = NerinAction::getMacroRepeatTypeFromFW(stream.repeatType, stream.repeatCount);
  button.KeyBit[1] = NerinAction::getMacroRepeatCountFromFW(stream.repeatCount);
  LXLogger::debug("macroNameStr=" + stream.name.value_or(""));
  if (!stream.name) {
    editState->setIsHaveNewName(true);
  }
  const std::string name =
      stream.name.value_or(NerinAction::generatedMacroName + ("_" + std::to_string(slot)) + "_" +
                           std::to_string(btnIndex));
  const auto macro = macroFor(name);
  button.MacroID = macro ? static_cast<std::uint32_t>(macro->macroId()) : 0;
  if (macro && !macro->isEdited()) {
    macro->setKeyInfoArr(NerinAction::eventsOf(stream));
  }
  NerinAction::refreshMenuList();
}

// One attempt at a slot. Nothing but currFWProfile changes unless all of it was read.
NerinAction::ReadResult<bool> readOnce(std::uint8_t slot) {
  const NerinAction::TransferSeries series;
  editState->currFWProfile() = {};
  const auto name = NerinAction::getFWProfileName(slot);
  if (!name.outcome.isDone() || !name.value || name.value->empty()) {
    return {name.outcome, false};
  }
  if (const Outcome outcome = NerinAction::getFWProfileDataPro(slot); !outcome.isDone()) {
    return {outcome, false};
  }
  ProfieController& library = ProfieController::getShareProCon();
  if (slot < limits::slotCount) {
    const auto profile = library.getProfileByName(name.value);
    library.fwProfileID()[slot] = profile ? profile->profileId() : ProfieController::notLinked;
  }
  library.setCurrFWProfileName(name.value);
  return {{}, true};
}

}  // namespace

NerinAction::ReadResult<std::optional<std::string>> NerinAction::getFWProfileName(
    std::uint8_t slot) {
  const TransferSeries series;
  Outcome outcome = setReadyPro(slot, readyProfile, SlotStep::ReadName);
  NameReport report{reportlayout::name, 0, slot};
  outcome += Outcome(SlotStep::ReadName, GetCommand2(report));
  pauseAfterReport();
  outcome += answered(SlotStep::ReadName, isWholeAnswer(report, reportlayout::name, slot));
  auto name = decodeNameReport(report);
  LXLogger::debug("resultStr=" + name.value_or(""));
  return {outcome, std::move(name)};
}

Outcome NerinAction::setFWProfileName(std::uint8_t slot, const std::optional<std::string>& name) {
  const TransferSeries series;
  auto report = name ? encodeNameReport(slot, *name) : std::nullopt;
  if (!report) {
    return {};
  }
  const unsigned length = (*report)[reportlayout::headerSize];
  LXLogger::debug(std::to_string(length));
  logHex((*report)[reportlayout::atChecksum]);
  logHex(length);
  Outcome outcome(SlotStep::WriteName, SetCommand2(*report));
  pauseAfterReport();
  outcome += refreshDeviceData();
  return outcome;
}

NerinAction::ReadResult<NerinAction::ProfileImage> NerinAction::readProfileImage(
    std::uint8_t slot) {
  const TransferSeries series;
  Outcome outcome = setReadyPro(slot, readyProfile, SlotStep::ReadImage);
  ProfileImage image{reportlayout::image};
  outcome += Outcome(SlotStep::ReadImage, GetCommand2(image));
  pauseAfterReport();
  outcome += answered(SlotStep::ReadImage, isWholeAnswer(image, reportlayout::image, slot));
  return {outcome, image};
}

Outcome NerinAction::getFWProfileDataPro(std::uint8_t slot) {
  const TransferSeries series;
  const auto image = readProfileImage(slot);
  if (!image.outcome.isDone()) {
    return image.outcome;
  }
  _Nerin_PROFILE profile = editState->currFWProfile();
  const ButtonSet buttons = decodeProfileImage(image.value, profile, singleFunctionIdOf);
  std::map<int, MacroStream> macros;
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    if (!buttons[static_cast<std::size_t>(index)]) {
      continue;
    }
    auto macro = readMacroStream(slot, index);
    if (!macro.outcome.isDone()) {
      return macro.outcome;
    }
    if (macro.value) {
      macros[index] = std::move(*macro.value);
    }
  }
  editState->currFWProfile() = profile;
  for (const auto& [index, macro] : macros) {
    takeMacro(slot, index, macro);
  }
  return {};
}

Outcome NerinAction::setFWProfileDataPro(std::uint8_t slot) {
  const TransferSeries series;
  const _Nerin_PROFILE& profile = editState->currFWProfile();
  const auto macros = writeMacros(slot, macroButtonsOf(profile));
  Outcome outcome = macros.outcome;
  ProfileImage image = encodeProfileImage(slot, profile, macros.value);
  outcome += Outcome(SlotStep::WriteImage, SetCommand2(image));
  pauseAfterReport();
  return outcome;
}

NerinAction::ReadResult<bool> NerinAction::getFWProfileData(std::uint8_t slot) {
  ReadResult<bool> read;
  for (int attempt = 0; attempt < maximumReads; ++attempt) {
    read = readOnce(slot);
    if (read.outcome.isDone() || isMouseGone(read.outcome.failure()->error)) {
      break;
    }
  }
  return read;
}

Outcome NerinAction::setFWProfileData(std::uint8_t slot) {
  const TransferSeries series;
  Outcome outcome = setFWProfileName(slot, ProfieController::getShareProCon().currFWProfileName());
  outcome += setFWProfileDataPro(slot);
  outcome += refreshDeviceData();
  return outcome;
}

NerinAction::ReadResult<std::optional<NerinAction::MacroStream>> NerinAction::readMacroStream(
    std::uint8_t slot, int btnIndex) {
  const TransferSeries series;
  Outcome outcome = setReadyPro(macroSlotOf(slot, btnIndex), readyMacro, SlotStep::ReadMacro);
  MacroReport report{reportlayout::macro};
  outcome += Outcome(SlotStep::ReadMacro, GetCommand2(report));
  outcome += answered(SlotStep::ReadMacro, isWholeMacroAnswer(report, macroSlotOf(slot, btnIndex)));
  return {outcome, decodeMacroReport(report)};
}

NerinAction::ReadResult<bool> NerinAction::setFWMacroData(std::uint8_t slot, int btnIndex) {
  const TransferSeries series;
  if (!isButton(btnIndex)) {
    return {};
  }
  const std::uint8_t macroSlot = macroSlotOf(slot, btnIndex);
  Outcome outcome = setReadyPro2(macroSlot, readyMacro, SlotStep::WriteMacro);
  const _BTN_INFO& button = editState->currFWProfile().btnInfo[btnIndex];
  const auto macro = getMacroById(static_cast<std::int32_t>(button.MacroID));
  if (!macro) {
    return {outcome, false};
  }
  MacroReport report = encodeMacroReport(macroSlot, streamOf(*macro, button));
  LXLogger::debug(std::to_string(report[reportlayout::atChecksum]));
  outcome += Outcome(SlotStep::WriteMacro, SetCommand2(report));
  pauseAfterReport();
  return {outcome, true};
}

Outcome NerinAction::getFWMacroData(std::uint8_t slot, int btnIndex) {
  if (!isButton(btnIndex)) {
    return {};
  }
  const auto [outcome, stream] = readMacroStream(slot, btnIndex);
  if (outcome.isDone() && stream) {
    takeMacro(slot, btnIndex, *stream);
  }
  return outcome;
}

Outcome NerinAction::setProfileIndexToDevice(std::uint8_t slot) {
  const TransferSeries series;
  Outcome outcome =
      setAdrrData(static_cast<std::uint8_t>(0xA0U | slot), activeSlotAddress, SlotStep::SelectSlot);
  outcome += sendCommand(std::array<std::uint8_t, 3>{0xC4, 0x07, slot}, SlotStep::SelectSlot);
  return outcome;
}

NerinAction::ReadResult<std::uint8_t> NerinAction::getProfileIndexByDevice() {
  const auto slot = getAdrrDataWithAddr(activeSlotAddress);
  return {slot.outcome, static_cast<std::uint8_t>(slot.value & 0x0FU)};
}

Outcome NerinAction::resetDevPro() {
  if (!checkListenDev()) {
    return {SlotStep::SelectSlot, std::make_error_code(std::errc::no_such_device)};
  }
  const MouseHold hold;
  (*sysDeviceReq)->resetCurrDevice();
  LXPlatform::current().sleep(std::chrono::milliseconds(500));
  const auto active = getProfileIndexByDevice();
  Outcome outcome = active.outcome;
  outcome += setProfileIndexToDevice(active.value);
  return outcome;
}

Outcome NerinAction::setBtnInfoToDevicePro(int btnIndex, const _BTN_INFO& btnInfo) {
  if (!isButton(btnIndex)) {
    return {};
  }
  if (Outcome held = admitLiveCommand(); !held.isDone()) {
    return held;
  }
  const TransferSeries series;
  const int slot = ProfieController::getShareProCon().currFWProfileIndex();
  editState->setCurrSetProfileID(static_cast<std::uint32_t>(slot));
  std::array<std::uint8_t, 8> command{0xC4, 0x0E, devicePosition(btnIndex)};
  setBtnInfoDataPro(command, btnInfo);
  Outcome outcome;
  if (btnInfo.FuncTableId == FunctionMacro) {
    editState->currFWProfile() = editState->currSetProfile();
    editState->currFWProfile().btnInfo[btnIndex] = btnInfo;
    const auto macro = setFWMacroData(static_cast<std::uint8_t>(slot), btnIndex);
    outcome += macro.outcome;
    if (!macro.value) {
      // The command keeps two more parameters. The mouse ignores them for a disabled button.
      command[3] = static_cast<std::uint8_t>(FunctionDisabled);
      command[4] = 0;
      command[5] = 0;
    }
  }
  outcome += sendCommand(command, SlotStep::WriteButton);
  return outcome;
}

void NerinAction::redefaultFWProfile(std::uint8_t slot) {
  static_cast<void>(slot);
}
