#pragma once

#include <string>

// Messages that are only a text, without a picture. Each runs a loop of its own until it is
// answered, over the window that is on top: nothing under it can be used or closed meanwhile.
namespace plainmessage {

void show(const std::string& text);
// True for OK.
bool ask(const std::string& text);

}  // namespace plainmessage
