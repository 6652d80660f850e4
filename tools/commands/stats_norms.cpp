// nuqi stats: norms of one picture, of the difference of two, and of that relative to the second.
#include <cstdio>
#include <nuqi/hpp/norms.hpp>
#include <string>

#include "commands/stats.h"

namespace tools {
namespace {

struct Norms {
  double inf, l1, l2;
};

Norms norms_of(const Levels& levels, const Selection& selection) {
  const auto& plane = levels.plane;
  const nuqi::Mask mask = selection.mask();
  return {nuqi::norm_inf(plane, mask), nuqi::norm_l1(plane, mask), nuqi::norm_l2(plane, mask)};
}

Norms norms_between(const Levels& a, const Levels& b, const Selection& selection) {
  const nuqi::Mask mask = selection.mask();
  return {nuqi::norm_diff_inf(a.plane, b.plane, mask), nuqi::norm_diff_l1(a.plane, b.plane, mask),
          nuqi::norm_diff_l2(a.plane, b.plane, mask)};
}

void print(const char* name, const Norms& norms) {
  const auto line = [&](const char* kind, const char* format, double value) {
    std::printf("%-*s", kNameWidth, (std::string(name) + " " + kind).c_str());
    std::printf(format, value);
    std::printf("\n");
  };
  line("Inf", "%.0f", norms.inf);
  line("L1", "%.0f", norms.l1);
  line("L2", "%.4f", norms.l2);
}

// Of two pictures that are both black, 0.
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
  const auto print_relative = [](const char* name, double of, double to) {
    std::printf("%-*s%.6f\n", kNameWidth, name, quotient(of, to));
  };
  print_relative("relative Inf", difference.inf, reference.inf);
  print_relative("relative L1", difference.l1, reference.l1);
  print_relative("relative L2", difference.l2, reference.l2);
}

}  // namespace tools
