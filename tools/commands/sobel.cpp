// nuqi sobel: derivatives of a picture by Sobel's method.
#include <CLI/CLI.hpp>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <string>

#include "commands/commands.h"
#include "failure.h"
#include "pictures/signed_filter.h"

namespace tools {
namespace {

const std::string kFooter =
    std::string(
        "Writes the derivative of the grey levels, smoothed by the aperture. --xorder 1 and\n"
        "--yorder 0 are positive where it gets brighter to the right, --xorder 0 and --yorder 1\n"
        "where downwards. Values are sums with integer weights, not divided; beyond 16 bits,\n"
        "which takes an aperture of 5 or 7, they stay at the limit.\n") +
    kSignedFooter;

struct Options : SignedFilter {
  int x_order = 1, y_order = 0;
};

void check_order(const char* name, int order, int size) {
  if (order >= 0 && order < size) return;
  throw UserError(std::string(name) + ": must be 0 to " + std::to_string(size - 1) +
                  " with --size " + std::to_string(size));
}

void differentiate(const Options& options) {
  check_order("--xorder", options.x_order, options.size);
  check_order("--yorder", options.y_order, options.size);
  check(options);
  write_signed<nuqi::Sobel>(
      options,
      "order " + std::to_string(options.x_order) + " in x and " + std::to_string(options.y_order) +
          " in y, aperture " + std::to_string(options.size),
      [&] { return nuqi::Sobel(options.x_order, options.y_order, options.size); });
}

}  // namespace

void add_sobel(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("sobel", "Differentiates a picture");
  command->footer(kFooter);
  add_signed_filter(*command, *options);
  command->add_option("--xorder", options->x_order, "The order of the derivative in x")
      ->capture_default_str();
  command->add_option("--yorder", options->y_order, "The order of the derivative in y")
      ->capture_default_str();
  command->callback([options] { differentiate(*options); });
}

}  // namespace tools
