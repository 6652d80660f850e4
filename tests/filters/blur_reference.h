// The box blur with its ring of row sums, step by step.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
class BlurReference {
 public:
  static constexpr bool floats = std::is_same_v<T, float>;
  using Sum = std::conditional_t<floats, float, int32_t>;
  using Row = std::vector<Sum>;

  explicit BlurReference(int size) : n(size), half(size / 2), pending(size), ring(size) {}

  // The rows that a stripe gives.
  std::vector<Row> stripe(const std::vector<std::vector<T>>& rows, int phase) {
    const bool first = phase == 0 || phase == 1, last = phase == 0 || phase == 2;
    std::vector<Row> out;
    size_t next = 0;
    if (first) {
      const Row h = horizontal(rows[next++]);
      column = h;
      for (Sum& c : column) c = static_cast<Sum>(half + 1) * c;
      ring[0] = Row(h.size(), 0);
      for (int i = 1; i <= half + 1; ++i) ring[i] = h;
      pending = half - 1;
    }
    for (; next < rows.size() && pending > 0; --pending) {
      const Row h = horizontal(rows[next++]);
      add(h);
      ring[n - pending] = h;
    }
    while (next < rows.size()) out.push_back(advance(horizontal(rows[next++])));
    if (!last) return out;
    for (int i = 0; i < pending; ++i) {
      const Row h = ring[n - pending - 1];
      ring[n - 1 - i] = h;
      add(h);
    }
    for (int i = 0; i < half - pending; ++i) out.push_back(advance(ring[n - 1]));
    return out;
  }

 private:
  Row horizontal(const std::vector<T>& s) const {
    using Running = std::conditional_t<floats, double, int32_t>;
    const int width = static_cast<int>(s.size());
    const auto at = [&](int x) { return static_cast<Running>(s[std::clamp(x, 0, width - 1)]); };
    Running sum = static_cast<Running>(half + 1) * at(0);
    for (int x = 1; x <= half; ++x) sum = sum + at(x);
    Row h(width);
    h[0] = static_cast<Sum>(sum);
    for (int x = 1; x < width; ++x) {
      sum = sum + at(x + half);
      sum = sum - at(x - half - 1);
      h[x] = static_cast<Sum>(sum);
    }
    return h;
  }
  void add(const Row& h) {
    for (size_t x = 0; x < h.size(); ++x) column[x] = column[x] + h[x];
  }
  Row advance(const Row& h) {
    for (size_t x = 0; x < h.size(); ++x) {
      const Sum difference = h[x] - ring[0][x];
      column[x] = column[x] + difference;
    }
    const Row kept = h;  // h may be a row of the ring
    ring[0] = kept;
    std::rotate(ring.begin(), ring.begin() + 1, ring.end());
    return column;
  }

  int n, half, pending;
  std::vector<Row> ring;
  Row column;
};

}  // namespace nuqi::test
