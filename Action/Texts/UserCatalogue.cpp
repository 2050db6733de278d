#include "Action/Texts/UserCatalogue.h"

#include <filesystem>
#include <map>
#include <sstream>
#include <string_view>
#include <utility>

#include "Action/Library/SupportFolder.h"
#include "Action/Texts/MacroSalvage.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/ProcessWide.h"

namespace fs = std::filesystem;

namespace {

// What the disk did not take, by the name of the file.
ProcessWide<std::map<std::string, std::string>> inMemory;

fs::path pathOf(const std::string& name) {
  return fs::path(NerinAction::getSysPath()) / name;
}

std::optional<std::string> shippedBytes(const std::string& name) {
  return durable::readFile(LXPlatform::current().resourceFolder / name);
}

// pugixml does not know a document's own entities and would save them as plain text.
bool hasEntities(const pugi::xml_document& document) {
  for (const pugi::xml_node& node : document.children()) {
    if (node.type() == pugi::node_doctype &&
        std::string_view(node.value()).find("<!ENTITY") != std::string_view::npos) {
      return true;
    }
  }
  return false;
}

// Keeps the bytes beside the file. They may be there already, from an earlier start.
std::error_code keepAside(const fs::path& file, const std::string& bytes) {
  constexpr int maximumCopies = 1000;
  for (int n = 1; n < maximumCopies; ++n) {
    fs::path aside = file;
    aside += n == 1 ? ".broken" : ".broken-" + std::to_string(n);
    std::error_code error;
    if (!fs::exists(aside, error)) {
      error = durable::writeFile(aside, bytes);
      if (!error) {
        LXLogger::warning(file.string() + " is damaged and was kept as " + aside.string());
      }
      return error;
    }
    if (durable::readFile(aside) == bytes) {
      return {};
    }
  }
  return std::make_error_code(std::errc::file_exists);
}

}  // namespace

std::optional<std::string> usercatalogue::bytesOf(const std::string& name) {
  const auto held = inMemory->find(name);
  return held != inMemory->end() ? held->second : durable::readFile(pathOf(name));
}

bool usercatalogue::isHeldInMemory(const std::string& name) {
  return inMemory->contains(name);
}

void usercatalogue::holdInMemory(const std::string& name, std::string bytes) {
  (*inMemory)[name] = std::move(bytes);
}

void usercatalogue::provide(const std::string& name) {
  if (!LXAction::checkAddCopyFileFromResourceWithPath(NerinAction::getSysPath(), name)) {
    LXLogger::warning(NerinAction::getSysPath() + " has no " + name);
  }
  if (bytesOf(name)) {
    return;
  }
  std::error_code error;
  if (fs::exists(pathOf(name), error)) {
    LXLogger::warning(pathOf(name).string() + " cannot be read");
  }
  if (auto bytes = shippedBytes(name)) {
    holdInMemory(name, std::move(*bytes));
  }
}

std::optional<std::string> usercatalogue::repaired(const std::string& name,
                                                   const std::string& damaged) {
  const auto shipped = shippedBytes(name);
  if (!shipped) {
    return std::nullopt;
  }
  const std::string bytes = macrosalvage::withMacrosOf(*shipped, damaged);
  auto error = damaged.empty() ? std::error_code() : keepAside(pathOf(name), damaged);
  if (!error) {
    error = replace(name, bytes);
  }
  if (error) {
    LXLogger::error(pathOf(name).string() + " is damaged and was not repaired: " + error.message());
    holdInMemory(name, bytes);
  }
  return bytes;
}

std::error_code usercatalogue::replace(const std::string& name, const std::string& bytes) {
  const fs::path path = pathOf(name);
  if (bytes.size() > durable::maximumFileSize) {
    // It could not be loaded again.
    return std::make_error_code(std::errc::file_too_large);
  }
  if (inMemory->contains(name)) {
    std::error_code error;
    const auto there = durable::readFile(path);
    if (!there && fs::exists(path, error)) {
      return std::make_error_code(std::errc::permission_denied);
    }
    if (there && !there->empty() && (error = keepAside(path, *there))) {
      return error;
    }
  }
  const auto error = durable::writeFile(path, bytes);
  if (!error) {
    inMemory->erase(name);
  }
  return error;
}

std::optional<std::string> usercatalogue::serialized(const pugi::xml_document& document,
                                                     pugi::xml_encoding encoding) {
  if (hasEntities(document)) {
    return std::nullopt;
  }
  const bool isUtf8 = encoding == pugi::encoding_utf8;
  std::ostringstream text;
  document.save(text, "  ", pugi::format_indent | (isUtf8 ? 0U : pugi::format_write_bom), encoding);
  return text.str();
}

pugi::xml_parse_result usercatalogue::parse(pugi::xml_document& document,
                                            const std::string& bytes) {
  auto result = document.load_buffer(bytes.data(), bytes.size(), parseOptions);
  if (result.encoding == pugi::encoding_latin1) {
    result.encoding = pugi::encoding_utf8;
    document.first_child().attribute("encoding").set_value("UTF-8");
  }
  return result;
}
