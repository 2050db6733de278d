#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

// One start of the program with the random user before it.
struct StartPlan {
  std::filesystem::path home;
  std::uint64_t seed = 1;
  std::uint64_t number = 1;  // which start of the seed
  int steps = 100;
  std::string language;  // empty for that of the system
  int killAt = 0;        // the step of a save at which the process is killed; 0 for none
  bool damagesMouse = false;

  // The file that names every step of this start.
  std::filesystem::path log() const { return home / "steps.log"; }
};

namespace soak {

// What a start returns that found something.
inline constexpr int findingCode = 66;

// Runs in a process of its own. Returns 0 if all was well.
int runStart(const StartPlan& plan, int& argc, char** argv);

}  // namespace soak
