#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "CommandLine/CommandLine.h"
#include "Fuzz/FuzzInput.h"

// Any words, one a line, as the command line of nerinctl. Nothing is run: a command would write
// the files that the words name.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream lines{std::string(fuzz::textOf(data, size))};
  std::vector<std::string> words{"nerinctl"};
  for (std::string word; std::getline(lines, word, '\n');) {
    words.push_back(word);
  }
  std::vector<const char*> arguments;
  arguments.reserve(words.size());
  for (const std::string& word : words) {
    arguments.push_back(word.c_str());
  }
  // The help of each would fill the disk.
  std::ostringstream said;
  auto* const out = std::cout.rdbuf(said.rdbuf());
  auto* const error = std::cerr.rdbuf(said.rdbuf());
  CommandLine line;
  try {
    const auto code = line.parse(static_cast<int>(arguments.size()), arguments.data());
    fuzz::require(code || line.chosen);
  } catch (const CommandError& refused) {
    fuzz::require(*refused.what() != '\0');
  }
  std::cout.rdbuf(out);
  std::cerr.rdbuf(error);
  return 0;
}
