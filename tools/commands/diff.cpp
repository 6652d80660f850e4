// nuqi diff: where two pictures differ.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nuqi/hpp/arith.hpp>
#include <string>

#include "commands/commands.h"
#include "pictures/row_reader.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes the absolute difference of two pictures of one size, in each channel: black where\n"
    "they are equal; grey where both are. Exit code 0, whether they differ or not.\n";

struct Options {
  std::string a, b, out;
};

// Channels differ each by itself, so that a row of n colours is one of 3n bytes.
Picture difference(const Picture& a, const Picture& b) {
  Picture result(a.size, a.channels);
  const auto bytes_of = [](auto& picture) {
    return nuqi::View(picture.pixels.data(), int64_t{picture.size.width} * picture.channels,
                      picture.size.height);
  };
  nuqi::abs_diff(bytes_of(a), bytes_of(b), bytes_of(result));
  return result;
}

void write_difference(const Options& options) {
  check_ending(options.out);
  Picture a = read_picture(options.a, Form::opaque), b = read_picture(options.b, Form::opaque);
  check_same_size(options.b, b.size, options.a, a.size);
  const int channels = std::max(a.channels, b.channels);
  const Picture result = difference(with_channels(a, channels), with_channels(b, channels));
  write_picture(options.out, result);
  int64_t differing = 0;
  int largest = 0;
  for (auto pixel = result.pixels.begin(); pixel != result.pixels.end(); pixel += channels) {
    const int most = *std::max_element(pixel, pixel + channels);
    differing += most > 0;
    largest = std::max(largest, most);
  }
  report("%s: %s, %lld pixels differ, by at most %d\n", options.out.c_str(),
         size_text(result.size).c_str(), static_cast<long long>(differing), largest);
}

}  // namespace

void add_diff(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("diff", "Shows where two pictures differ");
  command->footer(kFooter);
  command->add_option("A", options->a, "The first picture")->required();
  command->add_option("B", options->b, "The second picture, of the same size")->required();
  command->add_option("OUT", options->out, "The difference")->required();
  command->callback([options] { write_difference(*options); });
}

}  // namespace tools
