#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QWidget;

// The desktop's panels in which the user chooses a file. Each runs until it is answered; nothing
// when the user cancelled.
namespace filepanel {

enum class Kind {
  File,
  Program,  // an application (".app", ".desktop", ".AppImage") or anything that can be executed
};

struct Request {
  bool isSave = false;
  std::filesystem::path folder{};  // where the panel starts
  std::string name{};              // proposed, for saving
  // Patterns of the names that can be chosen ("*.pro"); all names without one.
  std::vector<std::string> patterns{};
  Kind kind = Kind::File;
};

using Answer = std::optional<std::filesystem::path>;

// One file that is there.
Answer openFile(QWidget* parent, const Request& request);
// A program, from the folder where the system keeps them.
Answer openProgram(QWidget* parent);
// A path to write to; whether it may be replaced is not asked.
Answer saveFile(QWidget* parent, const Request& request);

// For tests: answers every panel from now on, without showing it; an empty function ends that.
void setAnswerer(std::function<Answer(const Request&)> answerer);

}  // namespace filepanel
