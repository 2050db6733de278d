#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QWidget;

// The panels for choosing a file. Each runs until the user answers it; the answer is nothing if the
// user cancels. They are the toolkit's own on every desktop: a desktop's panel cannot be told which
// window it belongs to, and opens behind it.
namespace filepanel {

enum class Kind {
  File,
  Program,  // an application (".app", ".desktop", ".AppImage") or any executable file
};

struct Request {
  bool isSave = false;
  std::filesystem::path folder{};  // where the panel starts
  std::string name{};              // the proposed name, for saving
  std::string extension{};         // for saving: what the name must end with (".pro")
  // Patterns that the name must match ("*.pro"); empty for all names.
  std::vector<std::string> patterns{};
  Kind kind = Kind::File;
};

using Answer = std::optional<std::filesystem::path>;

// An existing file.
Answer openFile(QWidget* parent, const Request& request);
// A program, starting in the folder where the system keeps them.
Answer openProgram(QWidget* parent);
// A path to write to. It gets the extension unless the user has typed it, in whatever letters. Does
// not ask whether an existing file may be replaced.
Answer saveFile(QWidget* parent, const Request& request);

// For tests: answers every panel without showing it; an empty function turns this off.
void setAnswerer(std::function<Answer(const Request&)> answerer);

}  // namespace filepanel
