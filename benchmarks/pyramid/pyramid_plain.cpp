// Plain loops of the Gaussian pyramid, as one would write them: the sums along the rows go to a ring of row
// buffers. Compiled by each compiler.
#include "pyramid/pyramid_plain.h"

#include <cstddef>
#include <type_traits>
#include <vector>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::PyramidArgs;

// Sums of bytes down have up to 65408, and are never negative once 128 has been added to signed ones.
template <class T>
using Sum = std::conditional_t<std::is_same_v<T, float>, float, uint16_t>;
template <class T>
constexpr int kBias = std::is_same_v<T, int8_t> ? 128 : 0;

template <class T>
T rounded(Sum<T> sum, int bits) {
  if constexpr (std::is_same_v<T, float>)
    return sum * (1.0f / static_cast<float>(1 << bits));
  else
    return static_cast<T>(((sum + (1 << (bits - 1))) >> bits) - kBias<T>);
}

int mirrored(int i, int n) {
  if (i < 0) i = -i;
  return i < n ? i : 2 * n - 2 - i;
}

template <class T, int channels>
void down(const PyramidArgs<T>& a) {
  using S = Sum<T>;
  const int width = a.roi.width, height = a.roi.height, half = width / 2;
  static thread_local std::vector<S> buffer;
  buffer.resize(static_cast<std::size_t>(half) * channels * 5);
  const auto ring = [&](int y) { return buffer.data() + (y + 5) % 5 * half * channels; };
  const auto add_row = [&](int y) {
    const T* __restrict src = row(a.src, a.srcStep, mirrored(y, height));
    S* __restrict to = ring(y);
    const auto at = [&](int x, int c) { return static_cast<S>(src[x * channels + c] + kBias<T>); };
    const auto edge = [&](int j) {
      for (int c = 0; c < channels; ++c) {
        const auto s = [&](int k) { return at(mirrored(2 * j + k, width), c); };
        to[j * channels + c] = static_cast<S>(s(-2) + 4 * (s(-1) + s(1)) + 6 * s(0) + s(2));
      }
    };
    edge(0);
    for (int j = 1; j < half - 1; ++j)
      for (int c = 0; c < channels; ++c)
        to[j * channels + c] =
            static_cast<S>(at(2 * j - 2, c) + 4 * (at(2 * j - 1, c) + at(2 * j + 1, c)) +
                           6 * at(2 * j, c) + at(2 * j + 2, c));
    edge(half - 1);
  };
  for (int y = -2; y < 1; ++y) add_row(y);
  for (int y = 0; y < height / 2; ++y) {
    add_row(2 * y + 1);
    add_row(2 * y + 2);
    const S *r0 = ring(2 * y - 2), *r1 = ring(2 * y - 1), *r2 = ring(2 * y);
    const S *r3 = ring(2 * y + 1), *r4 = ring(2 * y + 2);
    T* __restrict dst = row(a.dst, a.dstStep, y);
    for (int i = 0; i < half * channels; ++i)
      dst[i] = rounded<T>(static_cast<S>(r0[i] + 4 * (r1[i] + r3[i]) + 6 * r2[i] + r4[i]), 8);
  }
}

template <class T, int channels>
void up(const PyramidArgs<T>& a) {
  using S = Sum<T>;
  const int width = a.roi.width, height = a.roi.height;
  const auto inside = [](int i, int n) { return i < 0 ? (n > 1 ? 1 : 0) : i < n ? i : n - 1; };
  static thread_local std::vector<S> buffer;
  buffer.resize(static_cast<std::size_t>(width) * channels * 6);
  const auto ring = [&](int y) { return buffer.data() + (y + 3) % 3 * 2 * width * channels; };
  const auto add_row = [&](int y) {
    const T* __restrict src = row(a.src, a.srcStep, inside(y, height));
    S* __restrict to = ring(y);
    const auto put = [&](int i, int left, int right, int c) {
      const auto at = [&](int x) { return static_cast<S>(src[x * channels + c] + kBias<T>); };
      to[2 * i * channels + c] = static_cast<S>(at(left) + 6 * at(i) + at(right));
      to[(2 * i + 1) * channels + c] = static_cast<S>(4 * (at(i) + at(right)));
    };
    for (int c = 0; c < channels; ++c) put(0, inside(-1, width), inside(1, width), c);
    for (int i = 1; i < width - 1; ++i)
      for (int c = 0; c < channels; ++c) put(i, i - 1, i + 1, c);
    for (int c = 0; c < channels && width > 1; ++c) put(width - 1, width - 2, width - 1, c);
  };
  add_row(-1);
  add_row(0);
  for (int y = 0; y < height; ++y) {
    add_row(y + 1);
    const S *r0 = ring(y - 1), *r1 = ring(y), *r2 = ring(y + 1);
    T* __restrict even = row(a.dst, a.dstStep, 2 * y);
    T* __restrict odd = row(a.dst, a.dstStep, 2 * y + 1);
    for (int i = 0; i < 2 * width * channels; ++i) {
      even[i] = rounded<T>(static_cast<S>(r0[i] + 6 * r1[i] + r2[i]), 6);
      odd[i] = rounded<T>(static_cast<S>(4 * (r1[i] + r2[i])), 6);
    }
  }
}

}  // namespace

template <class T>
PyramidLoop<T> plain_pyramid(bool upwards, int channels) {
  if (upwards) return channels == 1 ? up<T, 1> : up<T, 3>;
  return channels == 1 ? down<T, 1> : down<T, 3>;
}
template PyramidLoop<uint8_t> plain_pyramid<uint8_t>(bool, int);
template PyramidLoop<int8_t> plain_pyramid<int8_t>(bool, int);
template PyramidLoop<float> plain_pyramid<float>(bool, int);

}  // namespace nuqi::bench::PLAIN_COMPILER
