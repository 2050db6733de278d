#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <system_error>

// The steps that can fail in an operation on a slot.
enum class SlotStep : std::uint8_t {
  ReadActiveSlot,
  ReadName,
  ReadImage,
  ReadMacro,
  SelectSlot,
  WriteName,
  WriteMacro,
  WriteImage,
  WriteButton,
  WriteSetting,
  Refresh,
  HeldBack,
  SavePreferences,
  SaveLibrary,
  MakeProfile,
};

// The step that failed, and why.
struct Failure {
  SlotStep step{};
  std::error_code error;

  bool operator==(const Failure&) const = default;
};

// The result of an operation: done, or the first step that failed. Later steps may have run, and
// may have failed, too.
class [[nodiscard]] Outcome {
 public:
  Outcome() = default;
  Outcome(SlotStep step, std::error_code error) {
    if (error) {
      m_failure = Failure{step, error};
    }
  }

  // For a step that reports only success or failure.
  static Outcome of(SlotStep step, bool isDone) {
    return {step, isDone ? std::error_code() : std::make_error_code(std::errc::io_error)};
  }

  bool isDone() const { return !m_failure; }
  const std::optional<Failure>& failure() const { return m_failure; }

  // Adds the result of the next step. Keeps the first failure.
  Outcome& operator+=(const Outcome& next) {
    if (isDone()) {
      m_failure = next.m_failure;
    }
    return *this;
  }

  bool operator==(const Outcome&) const = default;

 private:
  std::optional<Failure> m_failure;
};
