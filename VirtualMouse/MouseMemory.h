#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "VirtualMouse/MouseMemoryFile.h"
#include "VirtualMouse/VirtualMouse.h"

// What the mouse keeps without power, as one run of bytes:
//
//   11 pages of 256 bytes   page 0: the active slot at address 25; page s + 1: the settings of
//                           slot s, its image report without the header
//   10 name reports         70 bytes each
//   190 macro reports       2053 bytes each; byte 0 is 0xB0 if the slot holds a macro, else 4
//
// Slots, addresses and sizes must be valid; the firmware checks them. If the memory is kept in a
// file that cannot be written, functions that change it throw std::system_error and change nothing.
class MouseMemory {
 public:
  static constexpr std::size_t pageSize = 256;
  static constexpr std::size_t addressCount = pageSize * (VirtualMouse::slotCount + 1);
  static constexpr std::uint16_t activeSlotAddress = 25;
  static constexpr std::uint8_t activeSlotMark = 0xA0;
  static constexpr std::uint8_t macroMark = 0xB0;

  // A memory that was never written: no names, no macros, settings all 0, slot 0 active.
  MouseMemory();

  // One process's turn at a memory that several have: begins with what the others wrote, and the
  // others wait until it ends. Nothing without a file. Throws std::system_error if the others take
  // longer than a second or the file cannot be read.
  class Turn {
   public:
    explicit Turn(MouseMemory& memory);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

   private:
    MouseMemoryFile* m_file;
  };

  // Keeps the memory in this file from now on. An existing file replaces the contents of the
  // memory; a missing one is created from them. Throws like MouseMemoryFile.
  void keepIn(const std::filesystem::path& file);

  std::uint8_t byteAt(std::uint16_t address) const;
  void setByteAt(std::uint16_t address, std::uint8_t value);

  // The stored value: a host can have written 10..15, slots that the mouse does not have.
  int activeSlot() const;
  void setActiveSlot(int slot);

  // The reports as a read returns them, as views that stay valid until the memory changes.
  std::span<const std::uint8_t> name(int slot) const;
  std::span<const std::uint8_t> macro(int macroSlot) const;
  // Assembled from the settings of the slot.
  std::array<std::uint8_t, VirtualMouse::imageReportSize> image(int slot) const;

  // Take a whole report and correct its header bytes.
  void setName(int slot, std::span<const std::uint8_t> report);
  void setImage(int slot, std::span<const std::uint8_t> report);
  void setMacro(int macroSlot, std::span<const std::uint8_t> report);

  // Sets byte `imageByte` (4..153) of the image report and those after it.
  void setImageBytes(int slot, std::size_t imageByte, std::span<const std::uint8_t> bytes);
  std::uint8_t imageByte(int slot, std::size_t imageByte) const;

  // No name, settings all 0, no macros.
  void clearSlot(int slot);

 private:
  void store(std::size_t offset, std::span<const std::uint8_t> bytes);

  std::vector<std::uint8_t> m_bytes;
  std::unique_ptr<MouseMemoryFile> m_file;
};

// Both expect a memory that was never written.
//
// The contents of a new mouse: ten named slots that differ in the color of their lights, no macros,
// slot 0 active.
void fillAsDelivered(MouseMemory& memory);
// Contents that no program writes: names that fill their field without a terminator, level count
// and active level 15, active slot 15, and in each slot two buttons with a macro of 2000 bytes
// whose last byte begins a delay record that has no room.
void fillWithGarbage(MouseMemory& memory);
