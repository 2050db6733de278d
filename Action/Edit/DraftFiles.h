#pragma once

#include <filesystem>
#include <string>

// The files in the folder of the drafts. A disk that does not take one is logged:
// what it was to keep then lasts as long as the program.
namespace draftfiles {

std::filesystem::path pathOf(const std::string& name);
// Makes the folder if it is missing. Whether the file was written.
bool write(const std::string& name, const std::string& document);
// Does nothing without such a file.
void remove(const std::string& name);

}  // namespace draftfiles
