#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>

// The preference file that this program and the background service share. Both write it, so nothing
// is cached: every read reads the file, and every write reads it again, changes only its own keys
// and replaces the whole file, synced, under a lock beside it. XML and binary files keep their
// form.
class PreferenceFile {
 public:
  // A value that this program stores under a key.
  using Value = std::variant<bool, std::string>;

  explicit PreferenceFile(std::filesystem::path path);

  // Nothing if the file or the key is missing or the value is of another kind. A number counts as a
  // boolean (true unless 0), and a boolean as a number.
  std::optional<bool> boolFor(const std::string& key) const;
  std::optional<std::int64_t> integerFor(const std::string& key) const;
  std::optional<std::string> stringFor(const std::string& key) const;
  // The same inside the dictionary stored under `dictionary`.
  bool hasDictionary(const std::string& dictionary) const;
  std::optional<bool> boolFor(const std::string& dictionary, const std::string& key) const;
  std::optional<std::string> stringFor(const std::string& dictionary, const std::string& key) const;

  // Stores one value. False if the file could not be written, if another program keeps its lock
  // longer than 200 ms, or if the value is not a text that a
  // property list can hold (UTF-8 without control characters); the old file then remains. A file
  // that is not a property list is first set aside under another name.
  [[nodiscard]] bool setValue(const std::string& key, const Value& value);
  // Stores values in the dictionary under `dictionary`, which is created if missing; its other keys
  // stay.
  [[nodiscard]] bool setValues(const std::string& dictionary,
                               const std::map<std::string, Value>& values);

 private:
  [[nodiscard]] bool change(const std::function<void(void* root)>& edit);

  std::filesystem::path m_path;
};
