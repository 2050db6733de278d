#include "Kit/Core/ProcessWide.h"

namespace {

// Registration happens before main, in an order that no file controls. A plain pointer is ready
// before all of it.
constinit ProcessWideBase* first = nullptr;

}  // namespace

ProcessWideBase::ProcessWideBase() : m_next(std::exchange(first, this)) {}

ProcessWideBase::~ProcessWideBase() = default;

void ProcessWideBase::resetAll() {
  for (ProcessWideBase* value = first; value != nullptr; value = value->m_next) {
    value->reset();
  }
}
