#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Action/Library/ProfileValue.h"

// The last states of the library, each in a folder of its own in "History" beside the library. A
// profile file that did not change is the same file in all of them.
class LibraryHistory {
 public:
  using Profiles = std::vector<std::shared_ptr<ProfileValue>>;

  static constexpr std::size_t maximumStates = 10;

  // The library's folder need not exist.
  explicit LibraryHistory(std::filesystem::path library);

  struct State {
    std::uint64_t number = 0;  // counts up from 1 and is never given again
    std::time_t time = 0;      // when it was saved
    std::filesystem::path folder;
  };
  // The newest first.
  std::vector<State> states() const;
  // The profiles of a state, in byte order of the file names. What cannot be read is left out.
  static Profiles profilesIn(const State& state);

  // Adds the library as it is on disk, unless the newest state is the same, and drops the oldest
  // states. A failure is logged and must not stop a save.
  void add() const;

  // What a recovery of the first would do to the second, by name.
  struct Differences {
    std::vector<std::string> added;
    std::vector<std::string> removed;
    std::vector<std::string> changed;
  };
  static Differences differences(const Profiles& state, const Profiles& now);

 private:
  std::filesystem::path m_library;
  std::filesystem::path m_folder;
};
