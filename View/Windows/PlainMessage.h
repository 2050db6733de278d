#pragma once

#include <string>

// Messages with only a text, without a picture. Each runs its own loop until the user answers, over
// the top window, and blocks all windows below.
namespace plainmessage {

void show(const std::string& text);
// True for OK.
bool ask(const std::string& text);

}  // namespace plainmessage
