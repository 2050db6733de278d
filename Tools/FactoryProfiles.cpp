#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Action/Record/Records.h"

// Writes the factory profiles: FactoryProfiles SOURCE.json FOLDER. Writes nothing unless the whole
// source is valid.

namespace {

using Json = nlohmann::json;

constexpr std::size_t profileCount = 10;

// A profile file is little-endian on every build machine.
template <std::unsigned_integral Word>
Word littleEndian(Word value) {
  if constexpr (std::endian::native == std::endian::little) {
    return value;
  } else {
    Word swapped = 0;
    for (std::size_t byte = 0; byte < sizeof(Word); ++byte) {
      swapped = static_cast<Word>((swapped << 8) | ((value >> (8 * byte)) & 0xFF));
    }
    return swapped;
  }
}

struct Range {
  std::uint32_t minimum;
  std::uint32_t maximum;
};

constexpr Range byteRange{0, 255};
constexpr Range flagRange{0, 1};
constexpr Range sensitivityRange{2, 164};

const Json& member(const Json& object, const char* key, const std::string& where) {
  if (!object.is_object()) {
    throw std::runtime_error(where + " is not an object");
  }
  const auto found = object.find(key);
  if (found == object.end()) {
    throw std::runtime_error(where + " has no \"" + key + "\"");
  }
  return *found;
}

const Json& elements(const Json& list, std::size_t count, const std::string& where) {
  if (!list.is_array() || list.size() != count) {
    throw std::runtime_error(where + " is not a list of " + std::to_string(count));
  }
  return list;
}

std::uint32_t number(const Json& value, Range range, const std::string& where) {
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() < range.minimum ||
      value.get<std::uint64_t>() > range.maximum) {
    throw std::runtime_error(where + " is " + value.dump() + ", not a whole number from " +
                             std::to_string(range.minimum) + " to " +
                             std::to_string(range.maximum));
  }
  return value.get<std::uint32_t>();
}

// Fills a word of the record from the member of that name.
void fill(std::uint32_t& field, const Json& object, const char* key, Range range,
          const std::string& where) {
  field = littleEndian(number(member(object, key, where), range, where + "." + key));
}

// Fills an array of words of the record.
template <std::size_t Count>
void fill(std::uint32_t (&field)[Count], const Json& object, const char* key, Range range,
          const std::string& where) {
  const std::string list = where + "." + key;
  const Json& values = elements(member(object, key, where), Count, list);
  for (std::size_t index = 0; index < Count; ++index) {
    field[index] =
        littleEndian(number(values[index], range, list + "[" + std::to_string(index) + "]"));
  }
}

void fillSettings(_Nerin_PROFILE& profile, const Json& settings) {
  const std::string where = "settings";
  fill(profile.modeType, settings, "modeType", flagRange, where);
  fill(profile.islightOnArr, settings, "islightOnArr", flagRange, where);
  fill(profile.dpiLevel, settings, "dpiLevel", {1, 5}, where);
  const std::uint32_t levels = settings.at("dpiLevel").get<std::uint32_t>();
  fill(profile.currSelectDPI, settings, "currSelectDPI", {0, levels - 1}, where);
  fill(profile.xSensArr, settings, "xSensArr", sensitivityRange, where);
  fill(profile.ySensArr, settings, "ySensArr", sensitivityRange, where);
  fill(profile.liftHeight, settings, "liftHeight", {0, 31}, where);
  fill(profile.poRate, settings, "poRate", {0, 3}, where);
}

void fillButtons(_Nerin_PROFILE& profile, const Json& source) {
  const Json& buttons =
      elements(member(source, "buttons", "the source"), std::size(profile.btnInfo), "buttons");
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    const std::string where = "buttons[" + std::to_string(index) + "]";
    const Json& button = buttons[index];
    _BTN_INFO& entry = profile.btnInfo[index];
    fill(entry.FuncID, button, "FuncID", byteRange, where);
    fill(entry.FuncTableId, button, "FuncTableId", byteRange, where);
    fill(entry.btnType, button, "btnType", {1, 6}, where);
    fill(entry.KeyBit, button, "KeyBit", byteRange, where);
    fill(entry.MacroID, button, "MacroID", {0, std::numeric_limits<std::int32_t>::max()}, where);
  }
}

void fillColor(_Nerin_PROFILE& profile, const Json& color, const std::string& where) {
  elements(color, 3, where);
  for (_LightColorInfo& zone : profile.lightColorArr) {
    zone.cR = littleEndian(number(color[0], byteRange, where + "[0]"));
    zone.cG = littleEndian(number(color[1], byteRange, where + "[1]"));
    zone.cB = littleEndian(number(color[2], byteRange, where + "[2]"));
  }
}

struct ProfileFile {
  std::string name;
  _Nerin_CONFIG record;
};

std::vector<ProfileFile> profilesFrom(const Json& source) {
  _Nerin_PROFILE common{};
  fillSettings(common, member(source, "settings", "the source"));
  fillButtons(common, source);
  const Json& colors =
      elements(member(source, "lightColors", "the source"), profileCount, "lightColors");

  std::vector<ProfileFile> files;
  for (std::size_t index = 0; index < profileCount; ++index) {
    const std::string name = "Profile#" + std::to_string(index + 1);
    ProfileFile file;
    file.name = name + ".pro";
    // The padding is part of the file, so it must not vary between builds.
    std::memset(&file.record, 0, sizeof(file.record));
    file.record.profileId = littleEndian(std::uint64_t{index + 1});
    file.record.isDefault = 1;
    std::memcpy(file.record.profileName, name.c_str(), name.size() + 1);
    file.record.profile = common;
    fillColor(file.record.profile, colors[index], "lightColors[" + std::to_string(index) + "]");
    files.push_back(file);
  }
  return files;
}

void write(const std::filesystem::path& path, const _Nerin_CONFIG& record) {
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(reinterpret_cast<const char*>(&record), sizeof(record));
  stream.close();
  if (!stream) {
    throw std::runtime_error("cannot write " + path.string());
  }
}

void run(const std::filesystem::path& sourcePath, const std::filesystem::path& folder) {
  std::ifstream stream(sourcePath);
  if (!stream) {
    throw std::runtime_error("cannot read " + sourcePath.string());
  }
  constexpr bool allowExceptions = true;
  constexpr bool ignoreComments = true;
  const Json source = Json::parse(stream, nullptr, allowExceptions, ignoreComments);
  const std::vector<ProfileFile> files = profilesFrom(source);
  std::filesystem::create_directories(folder);
  for (const ProfileFile& file : files) {
    write(folder / file.name, file.record);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: FactoryProfiles SOURCE.json FOLDER\n";
    return 2;
  }
  try {
    run(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::cerr << "FactoryProfiles: " << argv[1] << ": " << error.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
