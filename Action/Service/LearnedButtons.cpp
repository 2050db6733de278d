#include "Action/Service/LearnedButtons.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

#include "Action/Library/PreferenceKeys.h"
#include "Action/Library/SupportFolder.h"
#include "Kit/Core/Hex.h"
#include "Kit/Core/PreferenceFile.h"

namespace {

constexpr int buttonCount = 16;
constexpr const char* varying = "??";
// No report on this bus is longer.
constexpr std::size_t longestPattern = 64;

std::optional<std::uint8_t> byteOf(std::string_view digits) {
  std::uint8_t byte = 0;
  const char* end = digits.data() + digits.size();
  const auto parsed = std::from_chars(digits.data(), end, byte, 16);
  return digits.size() == 2 && parsed.ptr == end ? std::optional(byte) : std::nullopt;
}

}  // namespace

bool ButtonPattern::fits(int interface, std::span<const std::uint8_t> report) const {
  return interface == interfaceNumber && report.size() == bytes.size() &&
         std::equal(
             bytes.begin(), bytes.end(), report.begin(),
             [](const auto& wanted, std::uint8_t byte) { return !wanted || *wanted == byte; });
}

std::string ButtonPattern::text() const {
  std::string result = std::to_string(interfaceNumber) + ":";
  const char* gap = "";
  for (const auto& byte : bytes) {
    result += gap + (byte ? hexText(std::span(&*byte, 1)) : varying);
    gap = " ";
  }
  return result;
}

std::optional<ButtonPattern> ButtonPattern::parse(const std::string& text) {
  ButtonPattern pattern;
  const char* end = text.data() + text.size();
  const auto number = std::from_chars(text.data(), end, pattern.interfaceNumber);
  if (number.ec != std::errc() || number.ptr == end || *number.ptr != ':') {
    return std::nullopt;
  }
  std::string_view rest(number.ptr + 1, end);
  while (!rest.empty() && pattern.bytes.size() < longestPattern) {
    const std::string_view word = rest.substr(0, rest.find(' '));
    const auto byte = byteOf(word);
    if (!byte && word != varying) {
      return std::nullopt;
    }
    pattern.bytes.push_back(byte);
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
  }
  // A pattern of nothing but varying bytes would be every report.
  const bool saysSomething = std::any_of(pattern.bytes.begin(), pattern.bytes.end(),
                                         [](const auto& byte) { return byte.has_value(); });
  return rest.empty() && saysSomething ? std::optional(pattern) : std::nullopt;
}

void ButtonLesson::begin(Step step, Time now) {
  m_step = step;
  m_stepBegin = now;
  m_lastReport.reset();
}

bool ButtonLesson::isNoise(int interface, std::span<const std::uint8_t> report) const {
  return std::any_of(m_noise.begin(), m_noise.end(), [&](const Heard& one) {
    return one.interface == interface &&
           std::equal(one.bytes.begin(), one.bytes.end(), report.begin(), report.end());
  });
}

void ButtonLesson::heard(int interface, std::span<const std::uint8_t> report, Time now) {
  const Heard one{interface, {report.begin(), report.end()}};
  if (m_step == Step::Silence) {
    m_noise.push_back(one);
    return;
  }
  if (isOver() || isNoise(interface, report)) {
    return;
  }
  // What follows at once belongs to the same press.
  const bool isNewPress = !m_lastReport || now - *m_lastReport >= betweenPresses;
  m_lastReport = now;
  if (!isNewPress) {
    return;
  }
  if (m_step == Step::Other) {
    begin(m_pattern.fits(interface, report) ? Step::NoDifference : Step::Done, now);
    return;
  }
  const bool isLikeTheFirst =
      m_presses.empty() ||
      (m_presses.front().interface == interface && m_presses.front().bytes.size() == report.size());
  if (!isLikeTheFirst) {
    // The release of a held button, or another button.
    return;
  }
  m_stepBegin = now;
  m_presses.push_back(one);
  if (presses() < pressCount) {
    return;
  }
  m_pattern = {interface, {report.begin(), report.end()}};
  for (const Heard& press : m_presses) {
    for (std::size_t place = 0; place < press.bytes.size(); ++place) {
      if (press.bytes[place] != report[place]) {
        m_pattern.bytes[place].reset();
      }
    }
  }
  const Time last = now;
  begin(Step::Other, now);
  // The rest of the third press is no other button.
  m_lastReport = last;
}

void ButtonLesson::pass(Time now) {
  if (isOver() || now < due()) {
    return;
  }
  begin(m_step == Step::Silence ? Step::Presses : Step::SendsNothing, now);
}

ButtonLesson::Time ButtonLesson::due() const {
  return m_stepBegin + (m_step == Step::Silence ? std::chrono::milliseconds(silence)
                                                : std::chrono::milliseconds(patience));
}

std::map<int, ButtonPattern> learnedbuttons::all() {
  const PreferenceFile preferences(NerinAction::preferenceFilePath());
  std::map<int, ButtonPattern> result;
  for (int button = 0; button < buttonCount; ++button) {
    const auto text =
        preferences.stringFor(preferencekeys::learnedButtons, preferencekeys::button(button));
    if (const auto pattern = ButtonPattern::parse(text.value_or(""))) {
      result.emplace(button, *pattern);
    }
  }
  return result;
}

bool learnedbuttons::keep(int button, const ButtonPattern& pattern) {
  return PreferenceFile(NerinAction::preferenceFilePath())
      .setValues(preferencekeys::learnedButtons,
                 {{preferencekeys::button(button), pattern.text()}});
}
