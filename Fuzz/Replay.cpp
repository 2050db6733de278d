#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Fuzz/FuzzInput.h"

// Passes every file of a folder to the fuzz target, so that each test run repeats the inputs that
// once ended the program.
int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  int inputs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    // Printed first, so that the last line names the input that ended the program.
    std::printf("%s\n", entry.path().filename().c_str());
    std::fflush(stdout);
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++inputs;
  }
  if (inputs == 0) {
    std::fprintf(stderr, "%s holds no inputs\n", argv[1]);
    return 1;
  }
  return 0;
}
