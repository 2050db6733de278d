#include "Action/Catalogue/CatalogueFile.h"

#include <filesystem>
#include <sstream>
#include <string_view>

#include "Action/Library/SupportFolder.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXLogger.h"

namespace {

// Keeps the declaration and all other content, and leaves attribute values alone.
constexpr unsigned parseOptions =
    (pugi::parse_full | pugi::parse_ws_pcdata) & ~pugi::parse_wconv_attribute;

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

std::filesystem::path cataloguePath() {
  return std::filesystem::path(NerinAction::getSysPath()) / "MenuInfo.xml";
}

}  // namespace

bool CatalogueFile::load() {
  m_document.reset();
  const auto bytes = durable::readFile(cataloguePath());
  if (!bytes) {
    LXLogger::warning(cataloguePath().string() + " cannot be read");
    return false;
  }
  const auto result = m_document.load_buffer(bytes->data(), bytes->size(), parseOptions);
  m_encoding = result.encoding;
  if (m_encoding == pugi::encoding_latin1) {
    // A macro can have any name, and Latin-1 lacks most characters.
    m_encoding = pugi::encoding_utf8;
    m_document.first_child().attribute("encoding").set_value("UTF-8");
  }
  if (!result) {
    LXLogger::error(cataloguePath().string() + " is damaged: " + result.description());
    m_document.reset();
    return false;
  }
  return true;
}

bool CatalogueFile::save() const {
  if (hasEntities(m_document)) {
    LXLogger::error("the catalogue was not saved: it defines entities, which would be lost");
    return false;
  }
  const bool isUtf8 = m_encoding == pugi::encoding_utf8;
  std::ostringstream text;
  m_document.save(text, "  ", pugi::format_indent | (isUtf8 ? 0U : pugi::format_write_bom),
                  m_encoding);
  const std::string bytes = text.str();
  // A file over the limit could not be loaded again.
  const auto error = bytes.size() > durable::maximumFileSize
                         ? std::make_error_code(std::errc::file_too_large)
                         : durable::writeFile(cataloguePath(), bytes);
  if (error) {
    LXLogger::error("the catalogue was not saved: " + error.message());
  }
  return !error;
}

pugi::xml_node CatalogueFile::section(const char* name) const {
  return m_document.document_element().child(name);
}
