// What a filter state holds: its size, its row buffers and its coefficients.
#pragma once

#include <cstring>

#include "nuqi/nuqi.h"

// One block from AlignedAlloc: this header, then the row buffers.
struct ConvolState {
  void* rowArea;         // the first row buffer
  int32_t kind;          // size * 8; a Sobel state adds bottomUp * 4 + yOrder % 2 * 2 + xOrder % 2
  int32_t pending;       // rows that a first stripe still lacks; the size before any stripe
  void* rows[16];        // the row buffers; null beyond the last
  uint8_t xKernel[256];  // coefficients, four times each; zero where the filter has none
  uint8_t yKernel[256];
};
static_assert(sizeof(void*) != 4 || sizeof(ConvolState) == 588);

namespace nuqi {

constexpr bool is_size(int32_t size) { return size == 3 || size == 5 || size == 7; }

inline int size_of(const ConvolState& state) { return state.kind / 8; }

inline int row_buffers(const ConvolState& state) {
  int count = 0;
  while (count < 16 && state.rows[count] != nullptr) ++count;
  return count;
}

// Bytes from one row buffer to the next: room for so many bytes of any row.
inline int64_t row_pitch(const ConvolState& state) {
  return static_cast<char*>(state.rows[1]) - static_cast<char*>(state.rows[0]);
}

// The derivative of the given order, smoothed to the size by [1 1].
struct Coefficients {
  int32_t of[8];
};
constexpr Coefficients coefficients_of(int32_t order, int32_t size) {
  Coefficients c = {{1}};
  const auto convolve = [&](int32_t sign) {
    for (int i = size - 1; i > 0; --i) c.of[i] = c.of[i - 1] + sign * c.of[i];
    c.of[0] *= sign;
  };
  for (int i = 0; i < size - 1 - order; ++i) convolve(1);
  for (int i = 0; i < order; ++i) convolve(-1);
  return c;
}

// Coefficient i of a table of C: 16-bit integers or floats.
template <class C>
C coefficient(const uint8_t (&table)[256], int i) {
  C value;
  std::memcpy(&value, table + 4 * i * sizeof(C), sizeof value);
  return value;
}

// Coefficient 0 of every filter is 1 or -1; an unset table, or one in the other format, reads as
// something else.
template <class C>
bool holds_coefficients(const ConvolState& state) {
  const C c = coefficient<C>(state.xKernel, 0);
  return c == 1 || c == -1;
}

}  // namespace nuqi
