#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "VirtualMouse/MouseMemory.h"
#include "VirtualMouse/MousePowerFile.h"
#include "VirtualMouse/MouseReport.h"
#include "VirtualMouse/VirtualMouse.h"

// The rules by which the mouse answers control transfers. Each call gets the memory that survives a
// power cut; this class holds only what the mouse knows while it has power.
//
// An unknown transfer or command stalls. A known one that asks for something that does not exist is
// acknowledged and dropped. Both are faults. Functions that change the memory pass on its
// std::system_error.
class MouseFirmware {
 public:
  // Host to device: `data` is the data stage.
  TransferStatus receive(MouseMemory& memory, const SetupPacket& setup,
                         std::span<const std::uint8_t> data);
  // Device to host: `answer` becomes the data stage.
  TransferStatus answer(const MouseMemory& memory, const SetupPacket& setup,
                        std::vector<std::uint8_t>& answer);

  void losePower();
  // What is lost with the power, as bytes, and back.
  MousePowerFile::State power() const;
  void setPower(const MousePowerFile::State& state);
  bool hasUnrefreshedWrites() const { return m_hasUnrefreshedWrites; }

  void addFault(std::string words) { m_faults.push_back(std::move(words)); }
  const std::vector<std::string>& faults() const { return m_faults; }
  void clearFaults() { m_faults.clear(); }

 private:
  // The last ready command, which says what the next long transfer is about.
  struct Ready {
    std::uint8_t subject = 0;
    std::uint8_t slot = 0;
    bool isWrite = false;
  };
  using Command = std::array<std::uint8_t, 8>;

  bool obey(MouseMemory& memory, const Command& command);
  bool obeyControl(MouseMemory& memory, const Command& command);
  bool makeReady(const Command& command);
  bool setSetting(MouseMemory& memory, const Command& command);
  void setButton(MouseMemory& memory, const Command& command);
  void setLiftHeight(MouseMemory& memory, const Command& command);
  void writeByte(MouseMemory& memory, const Command& command);
  void readByte(const MouseMemory& memory, const Command& command);
  void takeReport(MouseMemory& memory, const MouseReport& form,
                  std::span<const std::uint8_t> report);
  bool hasSettings(const MouseMemory& memory, const Command& command);

  Command m_answer{};
  std::optional<Ready> m_ready;
  bool m_hasUnrefreshedWrites = false;
  std::vector<std::string> m_faults;
};
