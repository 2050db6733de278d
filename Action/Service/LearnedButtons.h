#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

// What the mouse sends when a button is pressed that launches a program. No document says it, so
// that a person shows it once, and it is kept in the preference file.

// A report as it looks at each press: bytes that stay, and bytes that vary.
struct ButtonPattern {
  int interfaceNumber = -1;
  // Nothing for a byte that varies.
  std::vector<std::optional<std::uint8_t>> bytes;

  bool fits(int interface, std::span<const std::uint8_t> report) const;
  // "1:07 0a ??", and back. Nothing for any other text.
  std::string text() const;
  static std::optional<ButtonPattern> parse(const std::string& text);

  bool operator==(const ButtonPattern&) const = default;
};

// The course of learning one button: two seconds of silence to hear what the mouse sends anyway,
// three presses of the button, and one of another button, which must look different.
class ButtonLesson {
 public:
  using Time = std::chrono::steady_clock::time_point;
  enum class Step { Silence, Presses, Other, Done, SendsNothing, NoDifference };

  static constexpr auto silence = std::chrono::seconds(2);
  // Reports of one press follow each other faster, presses slower.
  static constexpr auto betweenPresses = std::chrono::milliseconds(150);
  static constexpr auto patience = std::chrono::seconds(15);
  static constexpr int pressCount = 3;

  explicit ButtonLesson(Time now) : m_stepBegin(now) {}

  void heard(int interface, std::span<const std::uint8_t> report, Time now);
  // Call when due() has come.
  void pass(Time now);
  Step step() const { return m_step; }
  bool isOver() const { return m_step >= Step::Done; }
  int presses() const { return static_cast<int>(m_presses.size()); }
  Time due() const;
  // What was learned, after Done.
  const ButtonPattern& pattern() const { return m_pattern; }

 private:
  void begin(Step step, Time now);
  bool isNoise(int interface, std::span<const std::uint8_t> report) const;

  struct Heard {
    int interface = -1;
    std::vector<std::uint8_t> bytes;
  };
  Step m_step = Step::Silence;
  Time m_stepBegin;
  std::optional<Time> m_lastReport;
  std::vector<Heard> m_noise;
  std::vector<Heard> m_presses;  // the first report of each
  ButtonPattern m_pattern;
};

namespace learnedbuttons {

// Button 0..15 → what it sends.
std::map<int, ButtonPattern> all();
[[nodiscard]] bool keep(int button, const ButtonPattern& pattern);

}  // namespace learnedbuttons
