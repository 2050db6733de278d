#include "VirtualMouse/MouseMemory.h"

#include <algorithm>

#include "VirtualMouse/MouseReport.h"

namespace {

constexpr std::size_t namesOffset = MouseMemory::addressCount;
constexpr std::size_t macrosOffset =
    namesOffset + VirtualMouse::slotCount * VirtualMouse::nameReportSize;
constexpr std::size_t memorySize =
    macrosOffset + VirtualMouse::macroSlotCount * VirtualMouse::macroReportSize;
constexpr int macroSlotsOfSlot = VirtualMouse::macroSlotCount / VirtualMouse::slotCount;

std::size_t imageOffset(int slot, std::size_t imageByte) {
  return (static_cast<std::size_t>(slot) + 1) * MouseMemory::pageSize + imageByte -
         MouseReport::headerSize;
}

std::size_t nameOffset(int slot) {
  return namesOffset + static_cast<std::size_t>(slot) * VirtualMouse::nameReportSize;
}

std::size_t macroOffset(int macroSlot) {
  return macrosOffset + static_cast<std::size_t>(macroSlot) * VirtualMouse::macroReportSize;
}

std::vector<std::uint8_t> emptyName(int slot) {
  std::vector<std::uint8_t> report(VirtualMouse::nameReportSize);
  report[0] = mouseNameReport.id;
  report[2] = static_cast<std::uint8_t>(slot);
  return report;
}

std::vector<std::uint8_t> emptyMacro() {
  std::vector<std::uint8_t> report(VirtualMouse::macroReportSize);
  report[0] = mouseMacroReport.id;
  return report;
}

std::vector<std::uint8_t> withHeader(const MouseReport& form, std::uint8_t first, int slot,
                                     std::span<const std::uint8_t> report) {
  std::vector<std::uint8_t> result(report.begin(), report.end());
  result[0] = first;
  result[1] = 0;
  result[2] = static_cast<std::uint8_t>(slot);
  result[3] = form.checksum(result);
  return result;
}

}  // namespace

MouseMemory::MouseMemory() : m_bytes(memorySize) {
  m_bytes[activeSlotAddress] = activeSlotMark;
  for (int slot = 0; slot < VirtualMouse::slotCount; ++slot) {
    const std::vector<std::uint8_t> name = emptyName(slot);
    std::copy(name.begin(), name.end(),
              m_bytes.begin() + static_cast<std::ptrdiff_t>(nameOffset(slot)));
  }
  for (int macroSlot = 0; macroSlot < VirtualMouse::macroSlotCount; ++macroSlot) {
    m_bytes[macroOffset(macroSlot)] = mouseMacroReport.id;
  }
}

MouseMemory::Turn::Turn(MouseMemory& memory) : m_file(memory.m_file.get()) {
  if (m_file != nullptr) {
    m_file->begin(memory.m_bytes);
  }
}

MouseMemory::Turn::~Turn() {
  if (m_file != nullptr) {
    m_file->end();
  }
}

void MouseMemory::keepIn(const std::filesystem::path& file) {
  m_file = std::make_unique<MouseMemoryFile>(file, m_bytes);
}

std::uint8_t MouseMemory::byteAt(std::uint16_t address) const {
  return m_bytes[address];
}

void MouseMemory::setByteAt(std::uint16_t address, std::uint8_t value) {
  store(address, {&value, 1});
}

int MouseMemory::activeSlot() const {
  return m_bytes[activeSlotAddress] & 0x0F;
}

void MouseMemory::setActiveSlot(int slot) {
  setByteAt(activeSlotAddress, static_cast<std::uint8_t>(activeSlotMark | slot));
}

std::span<const std::uint8_t> MouseMemory::name(int slot) const {
  return std::span(m_bytes).subspan(nameOffset(slot), VirtualMouse::nameReportSize);
}

std::span<const std::uint8_t> MouseMemory::macro(int macroSlot) const {
  return std::span(m_bytes).subspan(macroOffset(macroSlot), VirtualMouse::macroReportSize);
}

std::array<std::uint8_t, VirtualMouse::imageReportSize> MouseMemory::image(int slot) const {
  std::array<std::uint8_t, VirtualMouse::imageReportSize> report{};
  const auto settings =
      std::span(m_bytes).subspan(imageOffset(slot, MouseReport::headerSize),
                                 VirtualMouse::imageReportSize - MouseReport::headerSize);
  std::copy(settings.begin(), settings.end(), report.begin() + MouseReport::headerSize);
  report[0] = mouseImageReport.id;
  report[2] = static_cast<std::uint8_t>(slot);
  report[3] = mouseImageReport.checksum(report);
  return report;
}

void MouseMemory::setName(int slot, std::span<const std::uint8_t> report) {
  store(nameOffset(slot), withHeader(mouseNameReport, mouseNameReport.id, slot, report));
}

void MouseMemory::setImage(int slot, std::span<const std::uint8_t> report) {
  setImageBytes(slot, MouseReport::headerSize, report.subspan(MouseReport::headerSize));
}

void MouseMemory::setMacro(int macroSlot, std::span<const std::uint8_t> report) {
  store(macroOffset(macroSlot), withHeader(mouseMacroReport, macroMark, macroSlot, report));
}

void MouseMemory::setImageBytes(int slot, std::size_t imageByte,
                                std::span<const std::uint8_t> bytes) {
  store(imageOffset(slot, imageByte), bytes);
}

std::uint8_t MouseMemory::imageByte(int slot, std::size_t imageByte) const {
  return m_bytes[imageOffset(slot, imageByte)];
}

void MouseMemory::clearSlot(int slot) {
  store(nameOffset(slot), emptyName(slot));
  store(imageOffset(slot, MouseReport::headerSize), std::vector<std::uint8_t>(pageSize));
  for (int position = 0; position < macroSlotsOfSlot; ++position) {
    store(macroOffset(slot * macroSlotsOfSlot + position), emptyMacro());
  }
}

void MouseMemory::store(std::size_t offset, std::span<const std::uint8_t> bytes) {
  const std::span<std::uint8_t> held = std::span(m_bytes).subspan(offset, bytes.size());
  const auto first = std::mismatch(bytes.begin(), bytes.end(), held.begin());
  if (first.first == bytes.end()) {
    return;
  }
  const auto last = std::mismatch(bytes.rbegin(), bytes.rend(), held.rbegin());
  const std::span<const std::uint8_t> changed(first.first, last.first.base());
  const auto skipped = static_cast<std::size_t>(first.first - bytes.begin());
  // The file comes first: if it cannot be written, the mouse must not answer with unsaved data.
  if (m_file) {
    m_file->write(offset + skipped, changed);
  }
  std::copy(changed.begin(), changed.end(), first.second);
}
