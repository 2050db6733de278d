#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>

// The preference file that this program and the background service share. Both write it, so
// nothing is cached: every reader reads the file, every writer reads it again, changes its own keys
// and puts the file back, whole and synced. XML and binary files are read and keep their form.
class PreferenceFile {
 public:
  // What this program stores under a key of a dictionary.
  using Value = std::variant<bool, std::string>;

  explicit PreferenceFile(std::filesystem::path path);

  // Nothing when the file or the key is missing, or holds something of another kind. A number
  // counts as a boolean (true unless 0), and a boolean as a number.
  std::optional<bool> boolFor(const std::string& key) const;
  std::optional<std::int64_t> integerFor(const std::string& key) const;
  std::optional<std::string> stringFor(const std::string& key) const;
  // The same inside the dictionary stored under `dictionary`.
  bool hasDictionary(const std::string& dictionary) const;
  std::optional<bool> boolFor(const std::string& dictionary, const std::string& key) const;
  std::optional<std::string> stringFor(const std::string& dictionary, const std::string& key) const;

  // Stores one value. False when the file could not be written, or when the value is no text that a
  // property list can hold (UTF-8 without control characters); the old file is then still there.
  // A file that is no property list is set aside under another name first.
  [[nodiscard]] bool setValue(const std::string& key, const Value& value);
  // Stores values in the dictionary under `dictionary`, which is made when it is missing; its
  // other keys stay.
  [[nodiscard]] bool setValues(const std::string& dictionary,
                               const std::map<std::string, Value>& values);

 private:
  [[nodiscard]] bool change(const std::function<void(void* root)>& edit);

  std::filesystem::path m_path;
};
