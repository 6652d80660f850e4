// Test values from a fixed seed: extremes as often as noise.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>

namespace nuqi::test {

// SplitMix64 (Steele, Lea and Flood, 2014): the same numbers with every compiler and library.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}

  uint64_t bits() {
    uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  // From `low` to `high`, both included.
  int between(int low, int high) {
    return low + static_cast<int>(bits() % (static_cast<uint64_t>(high) - low + 1));
  }
  template <class T, size_t N>
  T one_of(const std::array<T, N>& values) {
    return values[bits() % N];
  }

  // Any value of an integer type; the ends and zero half of the time.
  template <class T>
  T integer() {
    using Limits = std::numeric_limits<T>;
    if (bits() % 2 == 0) return static_cast<T>(bits());
    return one_of(std::array<T, 5>{Limits::min(), Limits::max(), 0, 1, static_cast<T>(-1)});
  }
  // Small numbers half of the time; else zeros of both signs, infinities, NaN, denormals, extremes.
  float any_float() {
    if (bits() % 2 == 0) return plain_float();
    using Limits = std::numeric_limits<float>;
    constexpr float inf = Limits::infinity();
    return one_of(std::array<float, 10>{0.0f, -0.0f, inf, -inf, Limits::quiet_NaN(),
                                        Limits::denorm_min(), -Limits::min(), Limits::max(), 1.0f,
                                        -255.0f});
  }
  // A number of moderate size with all its mantissa bits in use, so that every rounding shows.
  float plain_float() {
    return static_cast<float>(static_cast<int32_t>(bits() >> 32)) / 8388608.0f;
  }
  // 0 or not, in runs and alone, with every non-zero value.
  uint8_t mask() { return bits() % 2 == 0 ? 0 : static_cast<uint8_t>(bits() | 1u << bits() % 8); }

  template <class T>
  T value() {
    if constexpr (std::is_floating_point_v<T>)
      return any_float();
    else
      return integer<T>();
  }

 private:
  uint64_t state_;
};

}  // namespace nuqi::test
