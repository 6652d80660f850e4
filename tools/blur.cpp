// nuqi blur: the mean of the pixels around each pixel.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>

#include "clock.h"
#include "commands.h"
#include "core/isa.h"
#include "failure.h"
#include "filter_state.h"
#include "picture.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes a colour picture of IN's size: in each channel the mean of the square of pixels\n"
    "around each pixel, rounded. Pixels beyond an edge equal the edge pixel.\n";

struct Options {
  std::string in, out;
  int size = 3;
};

// `seconds` is what the library takes, without the ways between channels and planes.
Picture blurred(const Picture& picture, int size, double& seconds) {
  const RoiSize roi = picture.size;
  const FilterState state = blur_state(roi.width, kOfBytes, size);  // serves all channels
  Picture result(roi, picture.channels);
  Plane<uint8_t> channel(roi);
  Plane<int16_t> sums(roi);
  const int area = size * size;
  const size_t channels = size_t(picture.channels);
  for (size_t c = 0; c < channels; ++c) {
    for (size_t i = 0; i < channel.values.size(); ++i) {
      channel.values[i] = picture.pixels[i * channels + c];
    }
    RoiSize rows = roi;
    seconds += seconds_of([&] {
      require_ok(nuqiBlur_8u16s_C1R(channel.data(), channel.step(), sums.data(), sums.step(), &rows,
                                    state.get(), 0),
                 "nuqiBlur_8u16s_C1R");
    });
    for (size_t i = 0; i < sums.values.size(); ++i) {
      result.pixels[i * channels + c] = uint8_t((sums.values[i] + area / 2) / area);
    }
  }
  return result;
}

void blur(const Options& options) {
  check_ending(options.out);
  const Picture picture = read_picture(options.in);
  double seconds = 0;
  const Picture result = blurred(picture, options.size, seconds);
  write_picture(options.out, result);
  std::printf("%s: %s, means of %dx%d pixels, %.2f ms with %s\n", options.out.c_str(),
              size_text(result.size).c_str(), options.size, options.size, 1e3 * seconds,
              nuqi::name_of(nuqi::isa()));
}

}  // namespace

void add_blur(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("blur", "Blurs a picture");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OUT", options->out, "The blurred picture")->required();
  command->add_option("--size", options->size, "The square's side: 3, 5 or 7")
      ->check(CLI::IsMember({3, 5, 7}))
      ->capture_default_str();
  command->callback([options] { blur(*options); });
}

}  // namespace tools
