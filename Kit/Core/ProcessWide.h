#pragma once

#include <utility>

// The part of ProcessWide that knows no type: all of them stand in one list.
class ProcessWideBase {
 public:
  ProcessWideBase(const ProcessWideBase&) = delete;
  ProcessWideBase& operator=(const ProcessWideBase&) = delete;

  // Returns every value of the process to its first state, as if the program had just started.
  // Tests call this; the program does not.
  static void resetAll();

 protected:
  ProcessWideBase();
  virtual ~ProcessWideBase();
  virtual void reset() = 0;

 private:
  ProcessWideBase* m_next = nullptr;
};

// A value of which the process has exactly one. It registers itself, so that resetAll() reaches
// it: a global that is declared so cannot carry the state of one test into the next.
template <typename Value>
class ProcessWide final : private ProcessWideBase {
 public:
  Value& operator*() { return m_value; }
  Value* operator->() { return &m_value; }

 private:
  void reset() override {
    // The old value goes last: what it owns may look at the new one.
    Value old = std::exchange(m_value, Value());
    static_cast<void>(old);
  }

  Value m_value{};
};
