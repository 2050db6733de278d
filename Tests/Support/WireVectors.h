#pragma once

#include <string>
#include <vector>

#include "Tests/Support/ActionTest.h"

// Whole profiles and macros with their bytes on the wire.
struct WireVector {
  struct MacroReport {
    int button;
    std::string hex;
  };

  int slot;
  std::string name;
  Bytes file;  // the profile file
  std::string nameReport;
  std::string imageReport;
  std::vector<MacroReport> macroReports;
  std::vector<std::string> settings;  // the commands of a DPI and lift update
};

inline constexpr std::size_t wireVectorCount = 8;
inline constexpr std::size_t factoryProfileCount = 10;
const std::vector<WireVector>& wireVectors();
// The images of the ten factory profiles, each for its own slot.
const std::vector<std::string>& factoryImages();

// Checks for any requester: in the process and through hidapi.
class WireVectorTest : public ActionTest {
 protected:
  WireVectorTest() { takeMacros(); }
  WireVectorTest(std::shared_ptr<VirtualMouse> mouse, std::shared_ptr<LXDeviceRequester> requester)
      : ActionTest(std::move(mouse), std::move(requester)) {
    takeMacros();
  }

  // Expects that the mouse gets the exact bytes of the profile.
  void expectWritten(const WireVector& vector);
  // Expects to read back what the mouse can store.
  void expectReadBack(const WireVector& vector);
  // Expects that the mouse gets the exact bytes of the DPI and lift settings.
  void expectSettings(const WireVector& vector);
  // Writes the slot's factory profile from its file and reads it back.
  void expectFactoryProfile(int slot);

 private:
  // Starts the program with the macros of the vectors.
  static void takeMacros();
  _Nerin_PROFILE load(const WireVector& vector);
  void write(const WireVector& vector);
  std::vector<std::string> transfersToTheMouse();
};
