#pragma once

#include <string>

// Rules for the names that users give to profiles.
namespace profilenames {

// Whether the mouse and a file name can hold the name: 1 to 65 printable ASCII characters without
// "/" and ":".
bool isStorable(const std::string& name);
// Whether one of the ten factory profiles has the name, in any letter case.
bool isFactoryName(const std::string& name);

}  // namespace profilenames
