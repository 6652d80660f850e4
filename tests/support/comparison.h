// Bit-for-bit comparison, and one hash for results that must be the same on every machine.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

namespace nuqi::test {

// A value's bits. All NaNs are one: what a NaN made by arithmetic looks like is the processor's own.
template <class T>
uint64_t bits_of(T value) {
  if constexpr (std::is_same_v<T, float>)
    return value != value ? 0x7FC00000u : std::bit_cast<uint32_t>(value);
  else if constexpr (std::is_same_v<T, double>)
    return value != value ? 0x7FF8000000000000u : std::bit_cast<uint64_t>(value);
  else
    return static_cast<uint64_t>(value);
}

// AssertionResult forgets std::hex from one << to the next.
inline std::string hex(uint64_t value) {
  char text[19];
  std::snprintf(text, sizeof text, "0x%" PRIX64, value);
  return text;
}

template <class T>
testing::AssertionResult same_bits(const std::vector<T>& expected, const std::vector<T>& actual) {
  if (expected.size() != actual.size())
    return testing::AssertionFailure() << expected.size() << " values, not " << actual.size();
  for (size_t i = 0; i < expected.size(); ++i)
    if (bits_of(expected[i]) != bits_of(actual[i]))
      return testing::AssertionFailure()
             << "value " << i << " is " << +actual[i] << " (bits " << hex(bits_of(actual[i]))
             << "), not " << +expected[i] << " (bits " << hex(bits_of(expected[i])) << ")";
  return testing::AssertionSuccess();
}

// FNV-1a over 64-bit words.
class Hash {
 public:
  void add(uint64_t word) {
    for (int byte = 0; byte < 8; ++byte)
      state_ = (state_ ^ (word >> 8 * byte & 0xFF)) * 0x100000001B3u;
  }
  template <class T>
  void add(const std::vector<T>& values) {
    for (T value : values) add(bits_of(value));
  }
  uint64_t value() const { return state_; }

 private:
  uint64_t state_ = 0xCBF29CE484222325u;
};

// What a family's results over fixed inputs hash to: one constant for both compilers, every
// instruction set, 32 bits and other processors. A change of it is a change of the library's results.
inline testing::AssertionResult same_hash(uint64_t expected, const Hash& actual) {
  if (actual.value() == expected) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "the results hash to " << hex(actual.value()) << ", not " << hex(expected);
}

}  // namespace nuqi::test
