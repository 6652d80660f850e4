// nuqi laplace: the sum of a picture's second derivatives.
#include <CLI/CLI.hpp>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <string>

#include "commands/commands.h"
#include "pictures/signed_filter.h"

namespace tools {
namespace {

const std::string kFooter =
    std::string(
        "Writes the second derivative of the grey levels in x plus that in y, smoothed by the\n"
        "aperture: negative on spots and lines brighter than what surrounds them. Values are sums\n"
        "with integer weights, not divided; beyond 16 bits, which takes an aperture of 7, they\n"
        "stay at the limit.\n") +
    kSignedFooter;

void apply_laplace(const SignedFilter& options) {
  check(options);
  write_signed<nuqi::Laplace>(options, "aperture " + std::to_string(options.size),
                              [&] { return nuqi::Laplace(options.size); });
}

}  // namespace

void add_laplace(CLI::App& app) {
  auto options = std::make_shared<SignedFilter>();
  CLI::App* command = app.add_subcommand("laplace", "Sums a picture's second derivatives");
  command->footer(kFooter);
  add_signed_filter(*command, *options);
  command->callback([options] { apply_laplace(*options); });
}

}  // namespace tools
