// nuqi laplace: the sum of a picture's second derivatives.
#include <CLI/CLI.hpp>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <string>

#include "commands/commands.h"
#include "pictures/signed_output.h"

namespace tools {
namespace {

const std::string kFooter =
    std::string(
        "Writes the second derivative of the grey levels in x plus that in y, smoothed by the\n"
        "aperture: negative on spots and lines brighter than what surrounds them. Values are sums\n"
        "with integer weights, not divided; beyond 16 bits, which takes an aperture of 7, they "
        "stay\n"
        "at the limit.\n") +
    kSignedFooter;

struct Options {
  std::string in;
  SignedOutput out;
  int size = 3;
};

void apply_laplace(const Options& options) {
  check(options.out);
  write_signed<nuqi::Laplace>(options.in, options.out, "aperture " + std::to_string(options.size),
                              [&] { return nuqi::Laplace(options.size); });
}

}  // namespace

void add_laplace(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("laplace", "Sums a picture's second derivatives");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  add_signed_output(*command, options->out);
  command->add_option("--size", options->size, "The aperture: 3, 5 or 7")
      ->check(CLI::IsMember({3, 5, 7}))
      ->capture_default_str();
  command->callback([options] { apply_laplace(*options); });
}

}  // namespace tools
