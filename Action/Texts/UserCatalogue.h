#pragma once

#include <optional>
#include <string>
#include <system_error>

#include <pugixml.hpp>

// A catalogue of the support folder, "MenuInfo.xml" or "Tooltip.xml": the user's copy of a file
// that came with the program. It may be missing, damaged or unreadable, and the disk may take
// nothing; the program then works from what it has in memory. The user's file is never lost.
namespace usercatalogue {

// The bytes that count: those in memory where the disk did not take them, otherwise the file's.
std::optional<std::string> bytesOf(const std::string& name);

// Makes bytesOf answer if it can: copies the file that came with the program if the support folder
// has none, and holds it in memory where that fails or where the user's file cannot be read.
void provide(const std::string& name);

// For a file that is no XML: keeps it beside its place and puts one in its place that came with the
// program, with every macro of the damaged one that is still whole. Returns its bytes; nothing if
// the program came without the file.
std::optional<std::string> repaired(const std::string& name, const std::string& damaged);

// Whether bytesOf answers from memory, and a way to make it so until a replace succeeds.
bool isHeldInMemory(const std::string& name);
void holdInMemory(const std::string& name, std::string bytes);

// Replaces the user's file. What the program could not replace before is kept beside it.
[[nodiscard]] std::error_code replace(const std::string& name, const std::string& bytes);

// A document as bytes in that encoding, without changing what it holds. Nothing if it defines
// entities, which would be lost.
std::optional<std::string> serialized(const pugi::xml_document& document,
                                      pugi::xml_encoding encoding);

// How to parse a catalogue so that saving keeps all of it.
inline constexpr unsigned parseOptions =
    (pugi::parse_full | pugi::parse_ws_pcdata) & ~pugi::parse_wconv_attribute;

// Parses the bytes with these options. A document in Latin-1 will be saved as UTF-8, because a
// user's text can have any character.
pugi::xml_parse_result parse(pugi::xml_document& document, const std::string& bytes);

}  // namespace usercatalogue
