// The emulated nodes of a mouse for other programs, as long as this runs. Says where they are:
// programs find them with that in UMOCKDEV_DIR and umockdev's library loaded before the others.

#include <cstdio>
#include <cstdlib>
#include <memory>

#include <unistd.h>

#include "Tests/Support/EmulatedMouse.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("MouseOnNodes MEMORY\n", stderr);
    return 2;
  }
  EmulatedMouse emulated(std::make_shared<VirtualMouse>(std::filesystem::path(argv[1])));
  emulated.plug();
  std::puts(std::getenv("UMOCKDEV_DIR"));
  std::fflush(stdout);
  for (;;) {
    pause();
  }
}
