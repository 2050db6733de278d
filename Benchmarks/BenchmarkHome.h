#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "Action/Library/ProfieController.h"
#include "Kit/Core/LXPlatform.h"

// A home of its own for one benchmark, in the folder for temporary files, with the platform
// installed on it and nothing loaded yet.
class BenchmarkHome {
 public:
  // `platform` says what the home is to have besides its folders: a mouse, a clock.
  explicit BenchmarkHome(LXPlatform platform = {});
  ~BenchmarkHome();
  BenchmarkHome(const BenchmarkHome&) = delete;
  BenchmarkHome& operator=(const BenchmarkHome&) = delete;

  // Loads the library as a start of the program does.
  static ProfieController& loadLibrary();
  // Fills the library with this many profiles, each with a record of its own, and saves it.
  static void fillLibrary(std::size_t profiles);

 private:
  std::string m_folder;
};
