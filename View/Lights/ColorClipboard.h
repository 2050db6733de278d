#pragma once

#include <QString>
#include <vector>

#include "View/Lights/LightColor.h"

// Colors on the system's clipboard, so that they last beyond the window and the slot. They are
// text,
// "#0A141E", with a space between two of them; other programs write and read the same.
namespace colorclipboard {

QString codeOf(const LightColor& color);
void copy(const std::vector<LightColor>& colors);
// Nothing if the text on the clipboard is anything but colors.
std::vector<LightColor> colors();

}  // namespace colorclipboard
