#pragma once

#include <pugixml.hpp>

// "MenuInfo.xml" of the support folder as a document: loaded, changed in one section, written back.
class CatalogueFile {
 public:
  // False when there is no file or it is no XML; the document is then empty.
  [[nodiscard]] bool load();
  // Writes the document in the place of the file, in the encoding it was read in. Comments, unknown
  // attributes and other sections go out as they came in. False, logged, when it cannot be written,
  // or defines entities of its own, which would not survive.
  [[nodiscard]] bool save() const;

  // The first section of that name below the root, or a null node.
  pugi::xml_node section(const char* name) const;

 private:
  pugi::xml_document m_document;
  pugi::xml_encoding m_encoding = pugi::encoding_utf8;
};
