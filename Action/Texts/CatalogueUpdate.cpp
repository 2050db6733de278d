#include "Action/Texts/CatalogueUpdate.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "Action/Library/SupportFolder.h"
#include "Action/Texts/UserCatalogue.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"

namespace fs = std::filesystem;

namespace {

// Tells the elements of one parent apart.
using KeyOf = std::string (*)(const pugi::xml_node& element);
using ByKey = std::map<std::string, pugi::xml_node>;

std::string elementName(const pugi::xml_node& element) {
  return element.name();
}

std::string languageName(const pugi::xml_node& language) {
  return language.attribute("name").value();
}

std::string functionId(const pugi::xml_node& entry) {
  return std::to_string(LXAction::getIntValueByHex(entry.attribute("functionID").value()));
}

std::string textKey(const pugi::xml_node& text) {
  std::string key;
  for (const char* name : {"name", "viewID", "btnID"}) {
    key += text.attribute(name).value();
    key += '\n';
  }
  return key;
}

// The first element of each key, because only that one counts.
ByKey elementsOf(const pugi::xml_node& parent, KeyOf keyOf) {
  ByKey elements;
  for (const pugi::xml_node& child : parent.children()) {
    if (child.type() == pugi::node_element) {
      elements.emplace(keyOf(child), child);
    }
  }
  return elements;
}

bool hasSameAttributes(const pugi::xml_node& a, const pugi::xml_node& b) {
  const auto left = a.attributes();
  const auto right = b.attributes();
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const pugi::xml_attribute& x, const pugi::xml_attribute& y) {
                      return std::string_view(x.name()) == y.name() &&
                             std::string_view(x.value()) == y.value();
                    });
}

void takeAttributes(pugi::xml_node to, const pugi::xml_node& from) {
  to.remove_attributes();
  for (const pugi::xml_attribute& attribute : from.attributes()) {
    to.append_copy(attribute);
  }
}

// One level of a catalogue: the user's, the one that comes with the program now, and the one that
// came with it at the last update, which may be unknown.
struct Level {
  pugi::xml_node users;
  pugi::xml_node shipped;
  pugi::xml_node base;
};

// Calls `common` for the elements that both have, and adds those that are new behind the ones that
// they follow. Returns whether the user's level changed.
template <typename Common>
bool merge(const Level& level, KeyOf keyOf, Common common) {
  const ByKey users = elementsOf(level.users, keyOf);
  const ByKey base = elementsOf(level.base, keyOf);
  const auto in = [](const ByKey& elements, const std::string& key) {
    const auto found = elements.find(key);
    return found != elements.end() ? found->second : pugi::xml_node();
  };
  bool isChanged = false;
  pugi::xml_node last;
  pugi::xml_node parent = level.users;
  for (const pugi::xml_node& shipped : level.shipped.children()) {
    if (shipped.type() != pugi::node_element) {
      continue;
    }
    const std::string key = keyOf(shipped);
    if (const pugi::xml_node own = in(users, key)) {
      isChanged = common(Level{own, shipped, in(base, key)}) || isChanged;
      last = own;
    } else if (!in(base, key)) {
      last = last ? parent.insert_copy_after(shipped, last) : parent.prepend_copy(shipped);
      isChanged = true;
    }
  }
  return isChanged;
}

// An entry that the user never changed becomes the new one.
bool renew(const Level& entry) {
  if (!entry.base || !hasSameAttributes(entry.users, entry.base) ||
      hasSameAttributes(entry.users, entry.shipped)) {
    return false;
  }
  takeAttributes(entry.users, entry.shipped);
  return true;
}

bool updateMenus(const Level& root) {
  return merge(root, elementName, [](const Level& section) {
    // Its macros are the user's.
    return elementName(section.shipped) != "MacroList" && merge(section, functionId, renew);
  });
}

bool updateTexts(const Level& root) {
  return merge(root, languageName,
               [](const Level& language) { return merge(language, textKey, renew); });
}

struct Catalogue {
  const char* name;
  bool (*update)(const Level& root);
};

constexpr Catalogue catalogues[] = {{"MenuInfo.xml", updateMenus}, {"Tooltip.xml", updateTexts}};

void save(const Catalogue& catalogue, const pugi::xml_document& document,
          pugi::xml_encoding encoding) {
  const auto bytes = usercatalogue::serialized(document, encoding);
  if (!bytes) {
    LXLogger::warning(std::string(catalogue.name) +
                      " is not brought up to date: it defines entities, which would be lost");
  } else if (const auto error = usercatalogue::replace(catalogue.name, *bytes)) {
    LXLogger::warning(std::string(catalogue.name) +
                      " is brought up to date for this run only: " + error.message());
    usercatalogue::holdInMemory(catalogue.name, *bytes);
  } else {
    LXLogger::debug(std::string(catalogue.name) + " is up to date now");
  }
}

void bringUpToDate(const Catalogue& catalogue, const std::string& shippedBytes,
                   const std::string& baseBytes) {
  const auto bytes = usercatalogue::bytesOf(catalogue.name);
  pugi::xml_document users;
  pugi::xml_document shipped;
  pugi::xml_document base;
  if (!bytes || !usercatalogue::parse(shipped, shippedBytes)) {
    return;
  }
  const auto result = usercatalogue::parse(users, *bytes);
  if (!result) {
    usercatalogue::repaired(catalogue.name, *bytes);
    return;
  }
  static_cast<void>(usercatalogue::parse(base, baseBytes));
  if (catalogue.update(
          {users.document_element(), shipped.document_element(), base.document_element()})) {
    save(catalogue, users, result.encoding);
  }
}

}  // namespace

void NerinAction::bringCataloguesUpToDate() {
  const fs::path support = getSysPath();
  for (const Catalogue& catalogue : catalogues) {
    const auto shipped = durable::readFile(LXPlatform::current().resourceFolder / catalogue.name);
    const fs::path baseFile = support / ("." + std::string(catalogue.name) + ".shipped");
    const auto base = durable::readFile(baseFile);
    if (!shipped || base == shipped) {
      continue;
    }
    usercatalogue::provide(catalogue.name);
    bringUpToDate(catalogue, *shipped, base.value_or(""));
    if (!usercatalogue::isHeldInMemory(catalogue.name)) {
      if (const auto error = durable::writeFile(baseFile, *shipped)) {
        LXLogger::debug(baseFile.string() + " was not written: " + error.message());
      }
    }
  }
}
