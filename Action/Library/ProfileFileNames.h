#pragma once

#include <optional>
#include <set>
#include <string>

// Gives each profile of a folder a file name of its own, made from its name. Most names are file
// names as they stand; what a file system would refuse, or read as a path, is mapped.
class ProfileFileNames {
 public:
  static constexpr const char* extension = "pro";

  // The next profile's file name, distinct from all that were given before. Names must be asked for
  // in the same order to be the same again.
  std::string next(const std::optional<std::string>& profileName);

 private:
  std::set<std::string> m_given;
};
