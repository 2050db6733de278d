#pragma once

#include <string>

// The kernel's own log, which says what a failed test cannot.
namespace kernellog {

// All of it.
std::string text();
// The lines since mark() was called with these words.
std::string textSince(const std::string& words);
// Writes a line into it.
void mark(const std::string& words);

}  // namespace kernellog
