#include "Action/Texts/FilledText.h"

std::string filledText(const std::string& text, const std::vector<std::string>& values) {
  std::string filled;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int place = text[i] == '%' && i + 1 < text.size() ? text[i + 1] - '1' : -1;
    if (place >= 0 && place < static_cast<int>(values.size())) {
      filled += values[static_cast<std::size_t>(place)];
      ++i;
    } else {
      filled += text[i];
    }
  }
  return filled;
}
