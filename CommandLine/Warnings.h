#pragma once

#include <string>
#include <vector>

// What the layers below warned of while this lives. They log it, and a command has no log: the
// user would not hear of it.
class Warnings {
 public:
  Warnings();
  ~Warnings();
  Warnings(const Warnings&) = delete;
  Warnings& operator=(const Warnings&) = delete;

  // Prints each line once to standard error. Leaves out what the command's own error message,
  // empty for none, says already: a line that gives the same reason.
  void print(const std::string& error) const;

 private:
  std::vector<std::string> m_lines;
};
