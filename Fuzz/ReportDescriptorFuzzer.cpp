// The report descriptor of an interface, as a device sends it.

#include <span>

#include "Fuzz/FuzzInput.h"
#include "Kit/Device/ReportDescriptor.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static_cast<void>(vendorInputsOf(std::span(data, size)));
  return 0;
}
