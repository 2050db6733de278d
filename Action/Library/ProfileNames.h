#pragma once

#include <string>

// Rules for the names that users give to profiles.
namespace profilenames {

// Whether the mouse can keep the name and a folder can have a file of that name: 1 to 65 printable
// ASCII characters without "/" and ":".
bool isStorable(const std::string& name);
// Whether it is, in any letter case, the name of one of the ten factory profiles.
bool isFactoryName(const std::string& name);

}  // namespace profilenames
