#pragma once

#include <string>

// Rules for the names that users give to profiles.
namespace profilenames {

// Whether the mouse and a file name can hold the name: 1 to 65 printable ASCII characters without
// "/" and ":".
bool isStorable(const std::string& name);
// Whether the mouse stores the name as it is: 1 to 65 printable ASCII characters.
bool isHeldByMouse(const std::string& name);
// The name itself if the mouse holds it, otherwise its nearest spelling that the mouse holds: in
// Latin letters without accents, cut to 65 characters. Empty when nothing of it can be spelled.
std::string forMouse(const std::string& name);
// Whether one of the ten factory profiles has the name, in any letter case.
bool isFactoryName(const std::string& name);

}  // namespace profilenames
