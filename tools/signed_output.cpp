// How commands show results that may be negative: in colours, with their extremes on stdout.
#include "signed_output.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "core/isa.h"
#include "failure.h"
#include "tour_colours.h"

namespace tools {

void add_signed_output(CLI::App& command, SignedOutput& output) {
  command.add_option("OUT", output.path, "The result in colours")->required();
  command.add_option_function<double>(
      "--range",
      [&output](double range) {
        if (!(range > 0 && std::isfinite(range))) throw UserError("--range: must be above 0");
        output.range = range;
      },
      "The magnitude shown in the palest colours");
}

void check(const SignedOutput& output) { check_ending(output.path); }

void write_signed(const SignedOutput& output, const Plane<int16_t>& values, const std::string& how,
                  double seconds) {
  const double range = output.range > 0 ? output.range : usual_range(values);
  write_picture(output.path, signed_colours(values, range));
  const auto [low, high] = std::minmax_element(values.values.begin(), values.values.end());
  std::printf("%s: %s, %s, values %d to %d, shown to %g, %.2f ms with %s\n", output.path.c_str(),
              size_text(values.size).c_str(), how.c_str(), *low, *high, range, 1e3 * seconds,
              nuqi::name_of(nuqi::isa()));
}

}  // namespace tools
