#pragma once

#include <functional>
#include <string>
#include <vector>

// Gives the words for the name of a text: those of the user's language, or the English ones.
using Words = std::function<std::string(const std::string& name)>;

// The text with "%1", "%2" and so on replaced by the values. A value that holds such a sign itself
// stays as it is, and so does a sign that has no value.
std::string filledText(const std::string& text, const std::vector<std::string>& values);
