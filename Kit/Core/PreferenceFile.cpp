#include "Kit/Core/PreferenceFile.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

#include "Kit/Core/DurableFile.h"
#include "Kit/Core/FileLock.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/PropertyList.h"
#include "Kit/Core/UserFolders.h"
#include "Kit/Core/Utf8.h"

namespace fs = std::filesystem;

namespace {

propertylist::Handle readDictionary(const fs::path& path) {
  const auto bytes = durable::readFile(path);
  if (!bytes) {
    return nullptr;
  }
  auto root = propertylist::parse(*bytes);
  return propertylist::isKind(root.get(), PLIST_DICT) ? std::move(root) : nullptr;
}

plist_t itemOf(plist_t dictionary, const std::string& key) {
  return propertylist::isKind(dictionary, PLIST_DICT) ? plist_dict_get_item(dictionary, key.c_str())
                                                      : nullptr;
}

bool isNumber(plist_t node) {
  return propertylist::isKind(node, PLIST_BOOLEAN) || propertylist::isKind(node, PLIST_UINT) ||
         propertylist::isKind(node, PLIST_REAL);
}

std::optional<bool> asBool(plist_t node) {
  return isNumber(node) ? std::optional(propertylist::boolOf(node)) : std::nullopt;
}

std::optional<std::string> asString(plist_t node) {
  return propertylist::isKind(node, PLIST_STRING) ? std::optional(propertylist::stringOf(node))
                                                  : std::nullopt;
}

void store(plist_t dictionary, const std::string& key, const PreferenceFile::Value& value) {
  plist_t node = std::holds_alternative<bool>(value)
                     ? plist_new_bool(std::get<bool>(value) ? 1 : 0)
                     : plist_new_string(std::get<std::string>(value).c_str());
  plist_dict_set_item(dictionary, key.c_str(), node);
}

// Whether both forms of a property list can hold the text.
bool isStorable(const PreferenceFile::Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text == nullptr ||
         (utf8::isValid(*text) && std::none_of(text->begin(), text->end(), [](char byte) {
            return static_cast<unsigned char>(byte) < 0x20U && byte != '\t' && byte != '\n';
          }));
}

// A window waits no longer.
constexpr std::chrono::milliseconds lockLimit(200);

// Beside the file, since the file itself is replaced.
fs::path lockOf(const fs::path& file) {
  return file.parent_path() / ("." + file.filename().string() + ".lock");
}

// Moves a file that is not a property list out of the way, so that the user still has it.
bool setAside(const fs::path& path) {
  std::error_code error;
  for (int n = 1; n < 1000; ++n) {
    fs::path aside = path;
    aside += n == 1 ? ".broken" : ".broken-" + std::to_string(n);
    if (fs::exists(aside, error)) {
      continue;
    }
    fs::rename(path, aside, error);
    if (!error) {
      LXLogger::warning("the preference file is damaged and was kept as " + aside.string());
    }
    return !error;
  }
  return false;
}

}  // namespace

PreferenceFile::PreferenceFile(fs::path path) : m_path(std::move(path)) {}

std::optional<bool> PreferenceFile::boolFor(const std::string& key) const {
  const auto root = readDictionary(m_path);
  return asBool(itemOf(root.get(), key));
}

std::optional<std::int64_t> PreferenceFile::integerFor(const std::string& key) const {
  const auto root = readDictionary(m_path);
  plist_t node = itemOf(root.get(), key);
  return isNumber(node) ? std::optional(propertylist::integerOf(node)) : std::nullopt;
}

std::optional<std::string> PreferenceFile::stringFor(const std::string& key) const {
  const auto root = readDictionary(m_path);
  return asString(itemOf(root.get(), key));
}

bool PreferenceFile::hasDictionary(const std::string& dictionary) const {
  const auto root = readDictionary(m_path);
  return propertylist::isKind(itemOf(root.get(), dictionary), PLIST_DICT);
}

std::optional<bool> PreferenceFile::boolFor(const std::string& dictionary,
                                            const std::string& key) const {
  const auto root = readDictionary(m_path);
  return asBool(itemOf(itemOf(root.get(), dictionary), key));
}

std::optional<std::string> PreferenceFile::stringFor(const std::string& dictionary,
                                                     const std::string& key) const {
  const auto root = readDictionary(m_path);
  return asString(itemOf(itemOf(root.get(), dictionary), key));
}

bool PreferenceFile::setValue(const std::string& key, const Value& value) {
  if (!isStorable(value)) {
    LXLogger::warning("the preference file cannot hold the text of " + key);
    return false;
  }
  return change([&](plist_t root) { store(root, key, value); });
}

bool PreferenceFile::setValues(const std::string& dictionary,
                               const std::map<std::string, Value>& values) {
  for (const auto& [key, value] : values) {
    if (!isStorable(value)) {
      LXLogger::warning("the preference file cannot hold the text of " + key);
      return false;
    }
  }
  return change([&](plist_t root) {
    if (!propertylist::isKind(itemOf(root, dictionary), PLIST_DICT)) {
      plist_dict_set_item(root, dictionary.c_str(), plist_new_dict());
    }
    plist_t inner = itemOf(root, dictionary);
    for (const auto& [key, value] : values) {
      store(inner, key, value);
    }
  });
}

bool PreferenceFile::change(const std::function<void(void* root)>& edit) {
  std::error_code error;
  UserFolders::make(m_path.parent_path());
  // Otherwise the change of another program, between the read and the write, would be lost.
  const auto lock = FileLock::acquire(lockOf(m_path), lockLimit);
  if (!lock) {
    LXLogger::warning("the preference file was not written: another program is changing it");
    return false;
  }
  auto form = propertylist::Form::Xml;
  propertylist::Handle root;
  if (fs::exists(m_path, error)) {
    const auto bytes = durable::readFile(m_path);
    if (!bytes) {
      LXLogger::warning("the preference file cannot be read: " + m_path.string());
      return false;
    }
    form = propertylist::formOf(*bytes);
    root = propertylist::parse(*bytes);
    if (!propertylist::isKind(root.get(), PLIST_DICT)) {
      root.reset();
      form = propertylist::Form::Xml;
      if (!bytes->empty() && !setAside(m_path)) {
        return false;
      }
    }
  }
  if (!root) {
    root.reset(plist_new_dict());
  }
  edit(root.get());
  const std::string bytes = propertylist::serialize(root.get(), form);
  if (bytes.empty()) {
    LXLogger::warning("the preference file was not written: it cannot be serialized");
    return false;
  }
  error = durable::writeFile(m_path, bytes);
  if (error) {
    LXLogger::warning("the preference file was not written: " + error.message());
  }
  return !error;
}
