#pragma once

#include <filesystem>
#include <functional>
#include <string>

class QWidget;

// The help document: a file for each language, whose chapters have the names that are used here.
namespace helpdocument {

// The file in the user's language, or in English if that language has none.
std::filesystem::path path();
// Opens the document at a chapter. What fails is logged.
void open(const std::string& chapter);
// From now on F1 in the window opens the chapter. A function is asked each time.
void serve(QWidget& window, const std::string& chapter);
void serve(QWidget& window, std::function<std::string()> chapter);

}  // namespace helpdocument
