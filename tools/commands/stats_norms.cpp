// nuqi stats: norms of one picture, of the difference of two, and of that relative to the second.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "commands/stats.h"
#include "failure.h"

namespace tools {
namespace {

struct Norms {
  double largest = 0, sum = 0, squares = 0;

  void add(double tile_inf, double tile_l1, double tile_l2) {
    largest = std::max(largest, tile_inf);
    sum += tile_l1;
    squares += tile_l2 * tile_l2;
  }
};

Norms norms_of(const Levels& levels, const Selection& selection) {
  Norms norms;
  const int32_t step = levels.step(), mask_step = selection.mask.step(), channel = levels.channel;
  for_tiles(levels.size(), [&](int32_t x, int32_t y, RoiSize roi) {
    const uint8_t *src = levels.at(x, y), *mask = selection.at(x, y);
    double inf = 0, l1 = 0, l2 = 0;
    const auto measure = [&](auto one, auto third, const char* name, double* norm) {
      require_ok(channel == 0 ? one(src, step, mask, mask_step, roi, norm)
                              : third(src, step, mask, mask_step, roi, channel, norm),
                 name);
    };
    measure(nuqiNorm_Inf_8u_C1MR, nuqiNorm_Inf_8u_C3CMR, "nuqiNorm_Inf_8u", &inf);
    measure(nuqiNorm_L1_8u_C1MR, nuqiNorm_L1_8u_C3CMR, "nuqiNorm_L1_8u", &l1);
    measure(nuqiNorm_L2_8u_C1MR, nuqiNorm_L2_8u_C3CMR, "nuqiNorm_L2_8u", &l2);
    norms.add(inf, l1, l2);
  });
  return norms;
}

Norms norms_between(const Levels& a, const Levels& b, const Selection& selection) {
  Norms norms;
  const int32_t step = a.step(), mask_step = selection.mask.step(), channel = a.channel;
  for_tiles(a.size(), [&](int32_t x, int32_t y, RoiSize roi) {
    const uint8_t *src1 = a.at(x, y), *src2 = b.at(x, y), *mask = selection.at(x, y);
    double inf = 0, l1 = 0, l2 = 0;
    const auto measure = [&](auto one, auto third, const char* name, double* norm) {
      require_ok(channel == 0 ? one(src1, step, src2, step, mask, mask_step, roi, norm)
                              : third(src1, step, src2, step, mask, mask_step, roi, channel, norm),
                 name);
    };
    measure(nuqiNormDiff_Inf_8u_C1MR, nuqiNormDiff_Inf_8u_C3CMR, "nuqiNormDiff_Inf_8u", &inf);
    measure(nuqiNormDiff_L1_8u_C1MR, nuqiNormDiff_L1_8u_C3CMR, "nuqiNormDiff_L1_8u", &l1);
    measure(nuqiNormDiff_L2_8u_C1MR, nuqiNormDiff_L2_8u_C3CMR, "nuqiNormDiff_L2_8u", &l2);
    norms.add(inf, l1, l2);
  });
  return norms;
}

void print(const char* name, const Norms& norms) {
  const auto line = [&](const char* kind, const char* format, double value) {
    std::printf("%-*s", kNameWidth, (std::string(name) + " " + kind).c_str());
    std::printf(format, value);
    std::printf("\n");
  };
  line("Inf", "%.0f", norms.largest);
  line("L1", "%.0f", norms.sum);
  line("L2", "%.4f", std::sqrt(norms.squares));
}

// The library's relative norms are those of one tile: here all tiles' norms are joined first.
double quotient(double difference, double reference) {
  return difference == 0 ? 0 : difference / reference;
}

}  // namespace

void print_norms(const Levels& levels, const Selection& selection) {
  print("norm", norms_of(levels, selection));
}

void print_distance(const Levels& levels, const Levels& other, const Selection& selection) {
  const Norms difference = norms_between(levels, other, selection);
  const Norms reference = norms_of(other, selection);
  print("difference", difference);
  std::printf("%-*s%.6f\n", kNameWidth, "relative Inf",
              quotient(difference.largest, reference.largest));
  std::printf("%-*s%.6f\n", kNameWidth, "relative L1", quotient(difference.sum, reference.sum));
  std::printf("%-*s%.6f\n", kNameWidth, "relative L2",
              std::sqrt(quotient(difference.squares, reference.squares)));
}

}  // namespace tools
