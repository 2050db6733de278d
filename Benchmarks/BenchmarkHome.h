#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "Action/Library/ProfieController.h"
#include "Kit/Core/LXPlatform.h"

// A separate home for one benchmark, in the folder for temporary files, with the platform installed
// on it and nothing loaded yet.
class BenchmarkHome {
 public:
  // `platform` provides everything except the folders: a mouse, a clock.
  explicit BenchmarkHome(LXPlatform platform = {});
  ~BenchmarkHome();
  BenchmarkHome(const BenchmarkHome&) = delete;
  BenchmarkHome& operator=(const BenchmarkHome&) = delete;

  // Loads the library as the program does at its start.
  static ProfieController& loadLibrary();
  // Fills the library with this many profiles, each with its own record, and saves it.
  static void fillLibrary(std::size_t profiles);

 private:
  std::string m_folder;
};
