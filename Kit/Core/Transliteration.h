#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace transliteration {

// The text in printable ASCII: other scripts in Latin letters, accents dropped, and what has no
// letters of its own (a picture, a control character) left out. `language` is the user's ("de"),
// since German spells "ü" as "ue".
std::string toAscii(std::string_view utf8Text, const std::optional<std::string>& language);

}  // namespace transliteration
