#include "Kit/Core/Transliteration.h"

#include <algorithm>
#include <memory>

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include "Kit/Core/LXLogger.h"

std::string transliteration::toAscii(std::string_view utf8Text,
                                     const std::optional<std::string>& language) {
  const char* rules =
      language == "de" ? "Any-Latin; de-ASCII; Latin-ASCII" : "Any-Latin; Latin-ASCII";
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Transliterator> letters(
      icu::Transliterator::createInstance(rules, UTRANS_FORWARD, status));
  auto text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(utf8Text.data(), static_cast<std::int32_t>(utf8Text.size())));
  if (letters && U_SUCCESS(status) != 0) {
    letters->transliterate(text);
  } else {
    LXLogger::warning(std::string("no transliteration: ") + u_errorName(status));
  }
  std::string ascii;
  text.toUTF8String(ascii);
  std::erase_if(ascii, [](char letter) { return letter < ' ' || letter > '~'; });
  return ascii;
}
