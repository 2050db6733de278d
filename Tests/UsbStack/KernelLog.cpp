#include "Tests/UsbStack/KernelLog.h"

#include <fstream>

#include <sys/klog.h>

namespace {

constexpr int readAll = 3;
constexpr int sizeOfBuffer = 10;

}  // namespace

std::string kernellog::text() {
  const int size = klogctl(sizeOfBuffer, nullptr, 0);
  std::string text(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
  const int count = klogctl(readAll, text.data(), static_cast<int>(text.size()));
  text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return text;
}

std::string kernellog::textSince(const std::string& words) {
  const std::string all = text();
  const std::size_t begin = all.rfind(words);
  return begin == std::string::npos ? all : all.substr(begin);
}

void kernellog::mark(const std::string& words) {
  std::ofstream("/dev/kmsg") << words << std::endl;
}
