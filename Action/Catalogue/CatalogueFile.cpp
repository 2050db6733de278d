#include "Action/Catalogue/CatalogueFile.h"

#include "Action/Texts/UserCatalogue.h"
#include "Kit/Core/LXLogger.h"

namespace {

constexpr const char* fileName = "MenuInfo.xml";

}  // namespace

bool CatalogueFile::load() {
  m_document.reset();
  auto bytes = usercatalogue::bytesOf(fileName);
  if (!bytes) {
    LXLogger::warning(std::string(fileName) + " cannot be read");
    return false;
  }
  auto result = usercatalogue::parse(m_document, *bytes);
  if (!result) {
    LXLogger::debug(std::string(fileName) + " is damaged: " + result.description());
    bytes = usercatalogue::repaired(fileName, *bytes);
    if (bytes) {
      result = usercatalogue::parse(m_document, *bytes);
    }
  }
  m_encoding = result.encoding;
  if (!result) {
    LXLogger::error(std::string(fileName) + " is damaged: " + result.description());
    m_document.reset();
    return false;
  }
  return true;
}

bool CatalogueFile::save() const {
  const auto bytes = usercatalogue::serialized(m_document, m_encoding);
  if (!bytes) {
    LXLogger::error("the catalogue was not saved: it defines entities, which would be lost");
    return false;
  }
  const auto error = usercatalogue::replace(fileName, *bytes);
  if (error) {
    LXLogger::error("the catalogue was not saved: " + error.message());
  }
  return !error;
}

pugi::xml_node CatalogueFile::section(const char* name) const {
  return m_document.document_element().child(name);
}
