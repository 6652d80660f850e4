// Template matching, one placement after the other.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

enum class MatchMeasure { sq_diff, sq_diff_normed, corr, corr_normed, coeff, coeff_normed };

inline double match_root(double v) {
  const float single = static_cast<float>(v);
  uint32_t bits;
  std::memcpy(&bits, &single, sizeof bits);
  bits = (0xBE6F0000u - bits) >> 1;
  float seed;
  std::memcpy(&seed, &bits, sizeof seed);
  double y = seed;
  const double h = 0.5 * v;
  for (int step = 0; step < 4; ++step) y = (1.5 - (h * y) * y) * y;
  return y;
}

// Sums are doubles for floats, and exact for bytes.
template <class T>
using MatchSum = std::conditional_t<std::is_same_v<T, float>, double, int64_t>;

// S1, or S2, of all patches: for each source row the sum of what lies under the template's columns, which
// follows the template to the right; of those, the sum over the template's rows, which follows it down.
template <class T>
std::vector<MatchSum<T>> match_patch_sums(const std::vector<T>& src, RoiSize src_roi, RoiSize tpl,
                                          bool squares) {
  using Sum = MatchSum<T>;
  const int width = src_roi.width - tpl.width + 1, height = src_roi.height - tpl.height + 1;
  const auto pixel = [&](int x, int y) { return static_cast<Sum>(src[y * src_roi.width + x]); };
  std::vector<Sum> rows(src_roi.height), sums(static_cast<size_t>(width) * height);
  for (int x = 0; x < width; ++x) {
    for (int y = 0; y < src_roi.height; ++y) {
      if (x == 0) {
        for (int c = 0; c < tpl.width; ++c)
          rows[y] += squares ? pixel(c, y) * pixel(c, y) : pixel(c, y);
      } else {
        const Sum v = pixel(x + tpl.width - 1, y), old = pixel(x - 1, y);
        rows[y] += squares ? (v + old) * (v - old) : v - old;
      }
    }
    Sum sum = 0;
    for (int r = 0; r < tpl.height; ++r) sum += rows[r];
    sums[x] = sum;
    for (int y = 1; y < height; ++y)
      sums[y * width + x] = sum = sum - rows[y - 1] + rows[y + tpl.height - 1];
  }
  return sums;
}

// The result's pixels in raster order, for arguments that the call accepts.
template <class T>
std::vector<float> match_reference(MatchMeasure measure, const std::vector<T>& src, RoiSize src_roi,
                                   const std::vector<T>& tpl, RoiSize tpl_roi) {
  using Sum = MatchSum<T>;
  constexpr bool floats = std::is_same_v<T, float>;
  const int width = src_roi.width - tpl_roi.width + 1, height = src_roi.height - tpl_roi.height + 1;
  const double inv_n =
      1 / (static_cast<double>(tpl_roi.width) * tpl_roi.height + 2.220446049250313e-16);
  const double eps = 1.1920928955078125e-7;
  Sum t1_sum = 0, t2_sum = 0;
  for (T t : tpl) t1_sum += t, t2_sum += static_cast<Sum>(t) * t;
  double t1 = static_cast<double>(t1_sum);
  const double t2 = static_cast<double>(t2_sum);
  if (!floats) t1 = static_cast<int32_t>(static_cast<int64_t>(t1_sum));
  const auto s1_of = match_patch_sums(src, src_roi, tpl_roi, false);
  const auto s2_of = match_patch_sums(src, src_roi, tpl_roi, true);

  std::vector<float> result;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      Sum corr = 0, ssd = 0;
      const T* t = tpl.data();
      for (int r = 0; r < tpl_roi.height; ++r) {
        const T* w = src.data() + static_cast<size_t>(y + r) * src_roi.width + x;
        for (int c = 0; c < tpl_roi.width; ++c, ++t, ++w) {
          const Sum difference = static_cast<Sum>(*w) - static_cast<Sum>(*t);
          corr += static_cast<Sum>(*w) * static_cast<Sum>(*t);
          ssd += difference * difference;
        }
      }
      const double c = static_cast<double>(corr), d = static_cast<double>(ssd);
      const double s1 = static_cast<double>(s1_of[y * width + x]);
      const double s2 = static_cast<double>(s2_of[y * width + x]);
      const double m = s1 * inv_n;
      double score = 0;
      switch (measure) {
        case MatchMeasure::sq_diff: score = d; break;
        case MatchMeasure::sq_diff_normed:
          score = match_root(std::fabs(s2) + eps) * d * match_root(std::fabs(t2) + eps);
          break;
        case MatchMeasure::corr: score = c; break;
        case MatchMeasure::corr_normed:
          score = match_root(std::fabs(s2) + eps) * c * match_root(std::fabs(t2) + eps);
          break;
        case MatchMeasure::coeff: score = floats ? c - s1 * inv_n * t1 : c - s1 * t1 * inv_n; break;
        case MatchMeasure::coeff_normed:
          const double part = floats ? inv_n * t1 * t1 : t1 * t1 * inv_n;
          score = match_root(std::fabs(s2 - m * s1) + eps) * (c - m * t1) *
                  match_root(std::fabs(t2 - part) + eps);
          break;
      }
      result.push_back(static_cast<float>(score));
    }
  return result;
}

}  // namespace nuqi::test
