#include "Action/Record/Records.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "Kit/Core/Utf8.h"

bool isSameRecord(const _Nerin_PROFILE& a, const _Nerin_PROFILE& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

std::size_t getlen(const char (&field)[textSize]) {
  const auto* end = field + textSize - 1;
  return static_cast<std::size_t>(std::find(field, end, '\0') - field);
}

std::string_view textOf(const char (&field)[textSize]) {
  return {field, getlen(field)};
}

void setText(char (&field)[textSize], std::string_view text) {
  const std::string_view fitting = utf8::prefixOfBytes(text, textSize - 1);
  std::copy(fitting.begin(), fitting.end(), field);
  field[fitting.size()] = '\0';
}

namespace {

template <typename Number>
void toLittleEndian(Number& number) {
  if constexpr (std::endian::native == std::endian::big) {
    auto* bytes = reinterpret_cast<unsigned char*>(&number);
    std::reverse(bytes, bytes + sizeof number);
  }
}

// Converts the numbers of a record between the host's byte order and the file's.
void swapNumbers(_Nerin_CONFIG& config) {
  toLittleEndian(config.profileId);
  const auto swapWord = [](std::uint32_t& word) { toLittleEndian(word); };
  _Nerin_PROFILE& profile = config.profile;
  for (_BTN_INFO& button : profile.btnInfo) {
    swapWord(button.FuncID);
    swapWord(button.FuncTableId);
    swapWord(button.btnType);
    std::for_each(std::begin(button.KeyBit), std::end(button.KeyBit), swapWord);
    swapWord(button.MacroID);
  }
  for (_LightColorInfo& color : profile.lightColorArr) {
    swapWord(color.cR);
    swapWord(color.cG);
    swapWord(color.cB);
  }
  std::for_each(std::begin(profile.islightOnArr), std::end(profile.islightOnArr), swapWord);
  std::for_each(std::begin(profile.xSensArr), std::end(profile.xSensArr), swapWord);
  std::for_each(std::begin(profile.ySensArr), std::end(profile.ySensArr), swapWord);
  for (std::uint32_t* word : {&profile.modeType, &profile.dpiLevel, &profile.currSelectDPI,
                              &profile.liftHeight, &profile.poRate}) {
    swapWord(*word);
  }
}

}  // namespace

ConfigBytes bytesOf(const _Nerin_CONFIG& config) {
  ConfigBytes bytes;
  std::memcpy(bytes.data(), &config, bytes.size());
  if constexpr (std::endian::native == std::endian::big) {
    _Nerin_CONFIG swapped = config;
    swapNumbers(swapped);
    std::memcpy(bytes.data(), &swapped, bytes.size());
  }
  return bytes;
}

_Nerin_CONFIG configOf(std::span<const char> bytes) {
  _Nerin_CONFIG config{};
  if (!bytes.empty()) {
    std::memcpy(&config, bytes.data(), std::min(bytes.size(), sizeof config));
  }
  if constexpr (std::endian::native == std::endian::big) {
    swapNumbers(config);
  }
  return config;
}
