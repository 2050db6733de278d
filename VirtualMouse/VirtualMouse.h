#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "VirtualMouse/MacroPlayback.h"

// The eight bytes that open a USB control transfer.
struct SetupPacket {
  std::uint8_t requestType = 0;
  std::uint8_t request = 0;
  std::uint16_t value = 0;
  std::uint16_t index = 0;
  std::uint16_t length = 0;
};

enum class TransferStatus {
  Done,
  Stalled,  // the firmware refuses this transfer
  Gone,     // no mouse on the bus
};

struct TransferResult {
  TransferStatus status = TransferStatus::Gone;
  std::uint32_t bytes = 0;  // of the data stage
};

// A way in which the mouse misbehaves, for tests and demonstrations.
struct MouseScenario {
  enum class Kind {
    Healthy,
    Absent,
    UnpluggedAfter,
    Slow,
    AnswersShort,
    AnswersRandom,
    HoldsGarbage
  };
  Kind kind = Kind::Healthy;
  std::uint32_t transfers = 0;          // UnpluggedAfter: how many transfers still succeed
  std::chrono::milliseconds pause{40};  // Slow: what each transfer takes longer

  // Reads "healthy", "absent", "unplugged-after=N", "slow", "short", "random", "garbage".
  static std::optional<MouseScenario> parse(std::string_view text);
};

// One transfer as the mouse saw it.
struct TransferRecord {
  SetupPacket setup;
  std::vector<std::uint8_t> data;  // what was sent to the mouse, or what it answered
  TransferStatus status = TransferStatus::Done;
};

// The firmware's side of the mouse, in software: it answers control transfers as the mouse does
// and keeps what the mouse keeps. Not thread-safe.
class VirtualMouse {
 public:
  static constexpr std::uint16_t vendorId = 0x264A;
  static constexpr std::uint16_t productId = 0x1001;
  static constexpr int slotCount = 10;
  static constexpr int macroSlotCount = 190;
  static constexpr std::size_t nameReportSize = 70;
  static constexpr std::size_t imageReportSize = 154;
  static constexpr std::size_t macroReportSize = 2053;
  // What a mouse that answers short still sends.
  static constexpr std::size_t shortAnswerSize = 3;

  // A mouse as it leaves the factory, its memory in this process only.
  VirtualMouse();
  // A mouse whose memory is the file at `memoryFile`: created when missing, and every change is in
  // the file before the transfer that made it returns. Throws std::system_error when the file can
  // be neither opened for writing nor made, or when another mouse uses it (EWOULDBLOCK), and
  // std::runtime_error when it is no memory of a mouse.
  explicit VirtualMouse(const std::filesystem::path& memoryFile);
  ~VirtualMouse();
  VirtualMouse(const VirtualMouse&) = delete;
  VirtualMouse& operator=(const VirtualMouse&) = delete;

  // Performs one control transfer. Host to device: `data` holds what is sent; device to host: it
  // is filled from the start. `data` has setup.length bytes and stays as it is unless Done.
  // A long report that is dropped (a wrong checksum, say) is acknowledged all the same: see faults.
  TransferResult controlTransfer(const SetupPacket& setup, std::span<std::uint8_t> data);

  // From now on. Garbage lies over the memory and is in no file; what was there before shows again
  // with the next scenario. Random answers are the same ones each time the scenario is set.
  void setScenario(MouseScenario scenario);
  bool isAttached() const;
  void detach();
  // Plugs the mouse in, which also ends the scenarios that took it off the bus.
  void attach();

  // The mouse's own button that moves to another slot (0..9). Nothing without power.
  void pressSlotButton(int slot);
  // Makes a slot as if nothing had ever been written to it: no name, settings 0, no macros.
  void clearSlot(int slot);

  // What the mouse holds, for tests and for a look into it. Slots 0..9, macro slots 0..189; another
  // number throws std::out_of_range. The spans look into the mouse: copy what must stay.
  int activeSlot() const;  // 10..15 when the host has put that there
  std::span<const std::uint8_t> nameReport(int slot) const;   // 70 bytes, as a read answers
  std::span<const std::uint8_t> imageReport(int slot) const;  // 154 bytes
  // 2053 bytes; byte 0 is 0xB0 when the slot holds a macro, else 4 with zeros.
  std::span<const std::uint8_t> macroReport(int macroSlot) const;
  std::string slotName(int slot) const;
  // What the host is told when a button with this macro is pressed. Without a macro: no events.
  MacroPlayback playMacro(int macroSlot) const;
  // Whether a name, image or macro was written and no refresh command has followed yet.
  bool hasUnrefreshedWrites() const;

  // Every transfer that reached the mouse, the stalled ones too.
  const std::vector<TransferRecord>& transcript() const;
  void clearTranscript();
  // What the host did wrong, in words: a wrong checksum, an unknown command, a short transfer. Also
  // says when the memory file could not be written; such a transfer stalls and changes nothing.
  const std::vector<std::string>& faults() const;
  void clearFaults();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
