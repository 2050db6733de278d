#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>

// Where every choice of the random user comes from: the same seed, the same choices, on every
// machine and with every library.
class Dice {
 public:
  Dice(std::uint64_t seed, std::uint64_t start) : m_engine(seed * 1'000'003U + start) {}

  // 0..sides-1; 0 without sides.
  std::size_t roll(std::size_t sides) { return sides == 0 ? 0 : m_engine() % sides; }
  int between(int least, int most) {
    return least + static_cast<int>(roll(static_cast<std::size_t>(most - least) + 1));
  }
  bool percent(std::size_t chance) { return roll(100) < chance; }
  template <typename Range>
  auto& of(Range& range) {
    return range[roll(std::size(range))];
  }

 private:
  std::mt19937_64 m_engine;
};
