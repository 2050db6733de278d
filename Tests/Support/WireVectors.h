#pragma once

#include <string>
#include <vector>

#include "Tests/Support/ActionTest.h"

// Whole profiles and macros with the bytes that they are on the wire.
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
// The images of the ten factory profiles, each in its own slot.
const std::vector<std::string>& factoryImages();

// The checks that hold whatever the requester is: in the process, and through hidapi.
class WireVectorTest : public ActionTest {
 protected:
  WireVectorTest() { takeMacros(); }
  WireVectorTest(std::shared_ptr<VirtualMouse> mouse, std::shared_ptr<LXDeviceRequester> requester)
      : ActionTest(std::move(mouse), std::move(requester)) {
    takeMacros();
  }

  // The profile goes to the mouse byte for byte.
  void expectWritten(const WireVector& vector);
  // It reads back as what the mouse can keep of it.
  void expectReadBack(const WireVector& vector);
  // Its DPI and lift settings go to the mouse byte for byte.
  void expectSettings(const WireVector& vector);
  // The factory profile of the slot, from its file, goes out and comes back.
  void expectFactoryProfile(int slot);

 private:
  // Begins the program with the macros that the vectors refer to.
  static void takeMacros();
  _Nerin_PROFILE load(const WireVector& vector);
  void write(const WireVector& vector);
  std::vector<std::string> transfersToTheMouse();
};
