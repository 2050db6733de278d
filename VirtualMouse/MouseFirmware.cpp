#include "VirtualMouse/MouseFirmware.h"

#include <algorithm>

namespace {

constexpr std::uint8_t profileSubject = 0x0C;
constexpr std::uint8_t macroSubject = 0x0B;

constexpr std::size_t liftByte = 5;
constexpr std::size_t levelByte = 6;
constexpr std::size_t buttonsByte = 58;
constexpr std::size_t entrySize = 5;
constexpr std::uint8_t positionCount = 19;
constexpr std::uint8_t maximumNameLength = 65;

// The report that a class request selects by its value and interface; id 0 is the short command.
std::optional<MouseReport> reportOf(const SetupPacket& setup) {
  constexpr unsigned featureReport = 0x0300;
  if (setup.index == 0 && setup.value == featureReport) {
    return MouseReport{0, 8, 0};
  }
  if (setup.index == 1 && (setup.value & 0xFF00U) == featureReport) {
    return MouseReport::byId(setup.value & 0xFF);
  }
  return std::nullopt;
}

std::string describe(const SetupPacket& setup) {
  const std::array<std::uint8_t, 2> request{setup.requestType, setup.request};
  return hexText(request) + ' ' + hexText(setup.value) + ' ' + hexText(setup.index) + " of " +
         std::to_string(setup.length) + " bytes";
}

bool isSlot(std::uint8_t slot) {
  return slot < VirtualMouse::slotCount;
}

std::uint16_t address(std::uint8_t low, std::uint8_t high) {
  return static_cast<std::uint16_t>(low | (high << 8U));
}

}  // namespace

TransferStatus MouseFirmware::receive(MouseMemory& memory, const SetupPacket& setup,
                                      std::span<const std::uint8_t> data) {
  const std::optional<MouseReport> report = reportOf(setup);
  if (setup.requestType != 0x21 || setup.request != 0x09 || !report) {
    addFault("unknown transfer " + describe(setup));
    return TransferStatus::Stalled;
  }
  if (data.size() != report->size) {
    addFault("transfer " + describe(setup) + " must have " + std::to_string(report->size));
    return TransferStatus::Stalled;
  }
  if (report->id != 0) {
    takeReport(memory, *report, data);
    return TransferStatus::Done;
  }
  Command command{};
  std::copy(data.begin(), data.end(), command.begin());
  if (!obey(memory, command)) {
    addFault("unknown command " + hexText(command));
    return TransferStatus::Stalled;
  }
  return TransferStatus::Done;
}

TransferStatus MouseFirmware::answer(const MouseMemory& memory, const SetupPacket& setup,
                                     std::vector<std::uint8_t>& answer) {
  const std::optional<MouseReport> report = reportOf(setup);
  if (setup.requestType != 0xA1 || setup.request != 0x01 || !report) {
    addFault("unknown transfer " + describe(setup));
    return TransferStatus::Stalled;
  }
  if (setup.length < report->size) {
    addFault("transfer " + describe(setup) + " must have " + std::to_string(report->size));
    return TransferStatus::Stalled;
  }
  if (report->id == 0) {
    answer.assign(m_answer.begin(), m_answer.end());
    return TransferStatus::Done;
  }
  const std::uint8_t subject = report->id == mouseMacroReport.id ? macroSubject : profileSubject;
  if (!m_ready || m_ready->isWrite || m_ready->subject != subject) {
    addFault("report " + std::to_string(report->id) + " read without its ready command");
    return TransferStatus::Stalled;
  }
  if (report->id == mouseImageReport.id) {
    const auto image = memory.image(m_ready->slot);
    answer.assign(image.begin(), image.end());
  } else {
    const auto held =
        report->id == mouseNameReport.id ? memory.name(m_ready->slot) : memory.macro(m_ready->slot);
    answer.assign(held.begin(), held.end());
  }
  return TransferStatus::Done;
}

void MouseFirmware::losePower() {
  m_answer = {};
  m_ready.reset();
}

MousePowerFile::State MouseFirmware::power() const {
  MousePowerFile::State state{};
  std::copy(m_answer.begin(), m_answer.end(), state.begin());
  std::uint8_t* rest = state.data() + m_answer.size();
  if (m_ready) {
    *rest++ = 1;
    *rest++ = m_ready->subject;
    *rest++ = m_ready->slot;
    *rest = m_ready->isWrite ? 1 : 0;
  }
  state.back() = m_hasUnrefreshedWrites ? 1 : 0;
  return state;
}

void MouseFirmware::setPower(const MousePowerFile::State& state) {
  std::copy_n(state.begin(), m_answer.size(), m_answer.begin());
  const std::uint8_t* rest = state.data() + m_answer.size();
  const Ready ready{rest[1], rest[2], rest[3] != 0};
  const int slots =
      ready.subject == macroSubject ? VirtualMouse::macroSlotCount : VirtualMouse::slotCount;
  m_ready = rest[0] == 1 && ready.slot < slots ? std::optional(ready) : std::nullopt;
  m_hasUnrefreshedWrites = state.back() != 0;
}

bool MouseFirmware::obey(MouseMemory& memory, const Command& command) {
  switch (command[0]) {
    case 0xC4:
      if (!obeyControl(memory, command)) {
        return false;
      }
      break;
    case 0xC5:
      if (command[1] != 0 || command[2] != 46) {
        return false;
      }
      setLiftHeight(memory, command);
      break;
    case 0xDE:
      writeByte(memory, command);
      break;
    case 0xDF:
      readByte(memory, command);
      return true;
    default:
      return false;
  }
  m_answer = command;
  return true;
}

bool MouseFirmware::obeyControl(MouseMemory& memory, const Command& command) {
  switch (command[1]) {
    case 0x00:
      m_hasUnrefreshedWrites = false;
      return true;
    case 0x01:
      losePower();
      return true;
    case 0x03:
      // The lights always show what the memory holds, so there is nothing to conclude.
      return command[2] == 3 && command[3] == 3;
    case 0x07:
      if (isSlot(command[2])) {
        memory.setActiveSlot(command[2]);
      } else {
        addFault("switch to slot " + std::to_string(command[2]) + ", which does not exist");
      }
      return true;
    case macroSubject:
    case profileSubject:
      return makeReady(command);
    case 0x0E:
      setButton(memory, command);
      return true;
    case 0x0F:
      return setSetting(memory, command);
    default:
      return false;
  }
}

bool MouseFirmware::makeReady(const Command& command) {
  const std::uint8_t subject = command[1];
  const bool isMacro = subject == macroSubject;
  // Names and images are written without an announcement.
  if (command[3] > (isMacro ? 1 : 0)) {
    return false;
  }
  m_ready.reset();
  if (command[2] >= (isMacro ? VirtualMouse::macroSlotCount : VirtualMouse::slotCount)) {
    addFault(std::string(isMacro ? "macro slot " : "slot ") + std::to_string(command[2]) +
             " does not exist and cannot be made ready");
    return true;
  }
  m_ready = Ready{subject, command[2], command[3] == 1};
  return true;
}

bool MouseFirmware::setSetting(MouseMemory& memory, const Command& command) {
  const std::uint8_t bank = command[2];
  const std::uint8_t offset = command[3];
  if (bank > 1) {
    return false;
  }
  if (!hasSettings(memory, command)) {
    return true;
  }
  const int slot = memory.activeSlot();
  if (bank == 0) {
    const std::size_t imageByte = MouseReport::headerSize + offset;
    if (imageByte < VirtualMouse::imageReportSize) {
      memory.setImageBytes(slot, imageByte, {&command[4], 1});
    } else {
      addFault("setting " + std::to_string(offset) + " does not exist");
    }
    return true;
  }
  if (offset > 0x0F) {
    addFault("DPI level " + std::to_string(offset) + " does not exist");
    return true;
  }
  const auto levels =
      static_cast<std::uint8_t>((memory.imageByte(slot, levelByte) & 0xF0U) | offset);
  memory.setImageBytes(slot, levelByte, {&levels, 1});
  return true;
}

void MouseFirmware::setButton(MouseMemory& memory, const Command& command) {
  const std::uint8_t position = command[2];
  if (position >= positionCount) {
    addFault("button position " + std::to_string(position) + " does not exist");
  } else if (hasSettings(memory, command)) {
    memory.setImageBytes(memory.activeSlot(), buttonsByte + entrySize * position,
                         std::span(command).subspan(3, entrySize));
  }
}

void MouseFirmware::setLiftHeight(MouseMemory& memory, const Command& command) {
  if (!hasSettings(memory, command)) {
    return;
  }
  const int slot = memory.activeSlot();
  const auto lift =
      static_cast<std::uint8_t>((memory.imageByte(slot, liftByte) & 0xE0U) | (command[3] & 0x1FU));
  memory.setImageBytes(slot, liftByte, {&lift, 1});
}

void MouseFirmware::writeByte(MouseMemory& memory, const Command& command) {
  const std::uint16_t where = address(command[1], command[3]);
  if (where < MouseMemory::addressCount) {
    memory.setByteAt(where, command[2]);
  } else {
    addFault("write to address " + hexText(where) + ", which does not exist");
  }
}

void MouseFirmware::readByte(const MouseMemory& memory, const Command& command) {
  const std::uint16_t where = address(command[1], command[2]);
  m_answer = command;
  m_answer[4] = 0;
  if (where < MouseMemory::addressCount) {
    m_answer[4] = memory.byteAt(where);
  } else {
    addFault("read of address " + hexText(where) + ", which does not exist");
  }
}

void MouseFirmware::takeReport(MouseMemory& memory, const MouseReport& form,
                               std::span<const std::uint8_t> report) {
  const std::uint8_t slot = report[2];
  const bool isMacro = form.id == mouseMacroReport.id;
  const bool isAnnounced = m_ready && m_ready->isWrite && m_ready->slot == slot;
  if (isMacro && m_ready && m_ready->isWrite) {
    m_ready.reset();  // one announcement, one report
  }
  const auto drop = [&](const std::string& reason) {
    addFault("report " + std::to_string(form.id) + " for " + (isMacro ? "macro slot " : "slot ") +
             std::to_string(slot) + " dropped: " + reason);
  };
  const std::uint8_t checksum = form.checksum(report);
  if (report[0] != form.id) {
    drop("its first byte is " + std::to_string(report[0]));
  } else if (report[3] != checksum) {
    drop("its checksum is " + hexText(report.subspan(3, 1)) + " instead of " +
         hexText({&checksum, 1}));
  } else if (slot >= (isMacro ? VirtualMouse::macroSlotCount : VirtualMouse::slotCount)) {
    drop("there is no such slot");
  } else if (isMacro && !isAnnounced) {
    drop("it was not announced");
  } else if (form.id == mouseNameReport.id && report[4] > maximumNameLength) {
    drop("its name has " + std::to_string(report[4]) + " bytes");
  } else {
    if (isMacro) {
      memory.setMacro(slot, report);
    } else if (form.id == mouseImageReport.id) {
      memory.setImage(slot, report);
    } else {
      memory.setName(slot, report);
    }
    m_hasUnrefreshedWrites = true;
  }
}

bool MouseFirmware::hasSettings(const MouseMemory& memory, const Command& command) {
  if (memory.activeSlot() < VirtualMouse::slotCount) {
    return true;
  }
  addFault("command " + hexText(command) + " while slot " + std::to_string(memory.activeSlot()) +
           " is active, which does not exist");
  return false;
}
