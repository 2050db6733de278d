#include "Action/Edit/SlotDraft.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>

#include <pugixml.hpp>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Record/Limits.h"
#include "Kit/Core/Hex.h"

namespace {

std::string hexOf(const ConfigBytes& bytes) {
  return hexText({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

std::optional<ConfigBytes> bytesOfHex(std::string_view text) {
  ConfigBytes bytes{};
  if (text.size() != 2 * bytes.size()) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    unsigned value = 0;
    const char* first = text.data() + 2 * i;
    const auto [end, error] = std::from_chars(first, first + 2, value, 16);
    if (error != std::errc() || end != first + 2) {
      return std::nullopt;
    }
    bytes[i] = static_cast<char>(value);
  }
  return bytes;
}

}  // namespace

bool isSameEdit(const SlotDraft& one, const SlotDraft& other) {
  const auto alike = [](SlotDraft draft) {
    draft.content.profileId = 0;
    draft.isDiscarded = false;
    draft.isMouseOnly = false;
    return documentOf(draft);
  };
  return alike(one) == alike(other);
}

std::string documentOf(const SlotDraft& draft) {
  pugi::xml_document document;
  pugi::xml_node root = document.append_child("SlotDraft");
  root.append_attribute("slot").set_value(draft.slot + 1);
  root.append_attribute("discarded").set_value(draft.isDiscarded);
  root.append_attribute("mouseOnly").set_value(draft.isMouseOnly);
  root.append_child("Profile").text().set(hexOf(bytesOf(draft.content)).c_str());
  pugi::xml_node macros = root.append_child("MacroList");
  for (const auto& macro : draft.macros) {
    pugi::xml_node item = NerinAction::addElementByNode(*macro, macros);
    item.append_attribute("edited").set_value(macro->isEdited());
    item.append_attribute("hidden").set_value(macro->isNoDisplay());
  }
  std::ostringstream text;
  document.save(text, "  ");
  return text.str();
}

std::optional<SlotDraft> draftIn(std::string_view document) {
  pugi::xml_document parsed;
  if (!parsed.load_buffer(document.data(), document.size())) {
    return std::nullopt;
  }
  const pugi::xml_node root = parsed.child("SlotDraft");
  SlotDraft draft;
  draft.slot = root.attribute("slot").as_int() - 1;
  draft.isDiscarded = root.attribute("discarded").as_bool();
  draft.isMouseOnly = root.attribute("mouseOnly").as_bool();
  const auto bytes = bytesOfHex(root.child("Profile").text().get());
  if (draft.slot < 0 || draft.slot >= limits::slotCount || !bytes) {
    return std::nullopt;
  }
  draft.content = configOf(*bytes);
  for (const pugi::xml_node& item : root.child("MacroList").children("Item")) {
    if (draft.macros.size() == buttonCount) {
      break;
    }
    draft.macros.push_back(NerinAction::macroOf(item));
    draft.macros.back()->setIsEdited(item.attribute("edited").as_bool());
    draft.macros.back()->setIsNoDisplay(item.attribute("hidden").as_bool());
  }
  return draft;
}
