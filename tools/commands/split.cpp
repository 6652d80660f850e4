// nuqi split: the channels of a picture as pictures of their own.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nuqi/hpp/channels.hpp>
#include <string>

#include "commands/commands.h"
#include "pictures/file.h"
#include "pictures/picture.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes three grey pictures, one for each channel. `nuqi join` puts them together again; PNG\n"
    "files lose nothing on the way.\n";

struct Options {
  std::string in, out[3];
};

void split(const Options& options) {
  for (const std::string& out : options.out) check_ending(out);
  check_outputs_differ({options.out[0], options.out[1], options.out[2]});
  const Picture picture = read_picture(options.in);
  const RoiSize roi = picture.size;
  Plane<uint8_t> channels[3] = {Plane<uint8_t>(roi), Plane<uint8_t>(roi), Plane<uint8_t>(roi)};
  nuqi::split(view_of(picture).as<3>(), channels[0], channels[1], channels[2]);
  for (int c = 0; c < 3; ++c) write_picture(options.out[c], picture_of(channels[c]));
  report("%s, %s, %s: %s, red, green and blue\n", options.out[0].c_str(), options.out[1].c_str(),
         options.out[2].c_str(), size_text(roi).c_str());
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
  command->callback([options] { split(*options); });
}

}  // namespace tools
