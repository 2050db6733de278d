#include "Kit/Core/LXAction.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

#include <pugixml.hpp>

#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/Utf8.h"

namespace fs = std::filesystem;

namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// "de_AT.UTF-8@euro" becomes "de-at".
std::string plainLanguage(std::string_view code) {
  std::string plain = utf8::lowercased(code.substr(0, code.find_first_of(".@")));
  std::replace(plain.begin(), plain.end(), '_', '-');
  return plain;
}

}  // namespace

std::string LXAction::getNonullStr(const std::optional<std::string>& text) {
  return text.value_or(std::string());
}

bool LXAction::creatDirectoryPro(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  const bool isThere = fs::is_directory(folder, error);
  if (!isThere) {
    LXLogger::error("the folder cannot be made: " + folder.string());
  }
  return isThere;
}

bool LXAction::checkAddCopyFileFromResourceWithPath(const fs::path& folder,
                                                    const std::string& fileName) {
  std::error_code error;
  const fs::path target = folder / fileName;
  if (fs::exists(target, error)) {
    return true;
  }
  const auto bytes = durable::readFile(LXPlatform::current().resourceFolder / fileName);
  if (!bytes) {
    return false;
  }
  error = durable::writeFile(target, *bytes);
  if (error) {
    LXLogger::error(target.string() + " was not written: " + error.message());
  }
  return !error;
}

std::int32_t LXAction::getIntValueByHex(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
  }
  std::uint32_t value = 0;
  constexpr int hexadecimal = 16;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, hexadecimal);
  return error == std::errc() && end == text.data() + text.size() ? static_cast<std::int32_t>(value)
                                                                  : 0;
}

std::int32_t LXAction::getIntValue(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
  }
  std::int32_t value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    return text.starts_with('-') ? std::numeric_limits<std::int32_t>::min()
                                 : std::numeric_limits<std::int32_t>::max();
  }
  return value;
}

std::optional<std::string> LXAction::getNodeAtrValue(const pugi::xml_node& node,
                                                     const char* nodeName) {
  const pugi::xml_attribute attribute = node.attribute(nodeName);
  return attribute ? std::optional<std::string>(attribute.value()) : std::nullopt;
}

std::optional<std::string> LXAction::getNodeValue(const pugi::xml_node& node,
                                                  const char* nodeName) {
  const pugi::xml_node child = node.child(nodeName);
  return child ? std::optional<std::string>(child.text().get()) : std::nullopt;
}

std::optional<std::string> LXAction::getSysLanName() {
  const auto& preferred = LXPlatform::current().preferredLanguage;
  if (!preferred || preferred->empty()) {
    return std::nullopt;
  }
  const std::string code = plainLanguage(*preferred);
  const std::string language = code.substr(0, code.find('-'));
  if (language == "c" || language == "posix") {
    return std::nullopt;
  }
  if (language == "zh") {
    const bool isTraditional = code.starts_with("zh-hant") || code == "zh-tw" || code == "zh-hk";
    return isTraditional ? "zh-Hant" : "zh-Hans";
  }
  if (language == "pt") {
    // Only the Brazilian form has texts; the European one counts as a language of its own.
    return code == "pt-br" ? "pt-BR" : *preferred;
  }
  return language;
}

bool LXAction::SaveObject(const LXCoding& object, const fs::path& forPath) {
  const auto error = durable::writeFile(forPath, keyedarchive::archive(object));
  if (error) {
    LXLogger::warning(forPath.string() + " was not written: " + error.message());
  }
  return !error;
}

bool LXAction::readObject(const fs::path& path, LXCoding& object) {
  const auto bytes = durable::readFile(path);
  return bytes && keyedarchive::unarchive(*bytes, object);
}

bool LXAction::openFile(const std::string& path) {
  return LXPlatform::current().open(path);
}

bool LXAction::openPage(const std::string& address) {
  return LXPlatform::current().open(address);
}

void LXAction::showInfoMessage(const std::string& text) {
  LXPlatform::current().showInfoMessage(text);
}

bool LXAction::ChooseInfoMessage(const std::string& text) {
  return LXPlatform::current().chooseInfoMessage(text);
}

void LXAction::setLoggerTempLevel() {
  LXLogger::setLevel(LXLogger::Level::Debug);
}

void LXAction::setLoggerHasFile(bool hasFile) {
  LXLogger::setFile(hasFile ? LXPlatform::current().userFolders.log : fs::path());
}
