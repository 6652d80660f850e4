// nuqi split: the channels of a picture as pictures of their own.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nuqi/hpp/channels.hpp>
#include <string>

#include "commands/commands.h"
#include "pictures/file.h"
#include "pictures/row_reader.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes three grey pictures, one for each channel, of 16 bits where IN has 16. --alpha\n"
    "writes the fourth; without it, transparent pixels are laid over white. `nuqi join` puts\n"
    "them together again; PNG files lose nothing on the way.\n";

struct Options {
  std::string in, out[3], alpha;
};

template <class T>
void write_channels(RowReader& rows, const Options& options) {
  const PictureOf<T> picture = whole_picture<T>(rows, options.in);
  const RoiSize roi = picture.size;
  Plane<T> channels[4] = {Plane<T>(roi), Plane<T>(roi), Plane<T>(roi), Plane<T>(roi)};
  auto& [red, green, blue, alpha] = channels;
  if (picture.channels == 4) {
    nuqi::split(view_of(picture).template as<4>(), red, green, blue, alpha);
  } else {
    nuqi::split(view_of(with_channels(picture, 3)).template as<3>(), red, green, blue);
    std::fill(alpha.values.begin(), alpha.values.end(), T(kGreatest<T>));
  }
  for (int c = 0; c < 3; ++c) write_picture(options.out[c], picture_of(channels[c]));
  if (!options.alpha.empty()) write_picture(options.alpha, picture_of(alpha));
}

void split(const Options& options) {
  for (const std::string& out : options.out) check_picture_output(out);
  if (!options.alpha.empty()) check_picture_output(options.alpha);
  check_outputs_differ({options.out[0], options.out[1], options.out[2], options.alpha});
  const auto rows =
      open_rows(options.in, options.alpha.empty() ? Form::opaque : Form::stored, Depth::stored);
  (rows->format().bits == 8 ? write_channels<uint8_t> : write_channels<float>)(*rows, options);
  const std::string files = options.out[0] + ", " + options.out[1] + ", " + options.out[2];
  if (options.alpha.empty()) {
    report("%s: %s, red, green and blue\n", files.c_str(), size_text(rows->size()).c_str());
  } else {
    report("%s, %s: %s, red, green, blue and alpha\n", files.c_str(), options.alpha.c_str(),
           size_text(rows->size()).c_str());
  }
}

}  // namespace

void add_split(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("split", "Splits a picture into its channels");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OUT_R", options->out[0], "Its red")->required();
  command->add_option("OUT_G", options->out[1], "Its green")->required();
  command->add_option("OUT_B", options->out[2], "Its blue")->required();
  command->add_option("--alpha", options->alpha, "Also writes its alpha")->type_name("FILE");
  command->callback([options] { split(*options); });
}

}  // namespace tools
