#pragma once

#include <pugixml.hpp>

// "MenuInfo.xml" of the support folder as a document: load it, change one section, save it.
class CatalogueFile {
 public:
  // A file that is not XML is repaired, see UserCatalogue.h. False when the file is missing, or
  // when nothing came with the program to repair it with; the document is then empty.
  [[nodiscard]] bool load();
  // Replaces the file and keeps its encoding, comments, unknown attributes and other sections.
  // False, and logged, when the file cannot be written, or when the document defines entities,
  // which saving would lose.
  [[nodiscard]] bool save() const;

  // The first section of that name below the root; a null node when there is none.
  pugi::xml_node section(const char* name) const;

 private:
  pugi::xml_document m_document;
  pugi::xml_encoding m_encoding = pugi::encoding_utf8;
};
