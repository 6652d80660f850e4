// nuqi join: a colour picture of three grey ones.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nuqi/hpp/channels.hpp>
#include <string>

#include "commands/commands.h"
#include "pictures/picture.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes a colour picture whose channels are the grey levels of three pictures of one size.\n";

struct Options {
  std::string in[3], out;
};

void join(const Options& options) {
  check_ending(options.out);
  Plane<uint8_t> channels[3];
  for (int c = 0; c < 3; ++c) {
    channels[c] = read_grey(options.in[c]);
    check_same_size(options.in[c], channels[c].size, options.in[0], channels[0].size);
  }
  Picture picture(channels[0].size, 3);
  nuqi::join(channels[0], channels[1], channels[2], view_of(picture).as<3>());
  write_picture(options.out, picture);
  report("%s: %s, joined of three channels\n", options.out.c_str(),
         size_text(picture.size).c_str());
}

}  // namespace

void add_join(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("join", "Joins three channels to a colour picture");
  command->footer(kFooter);
  command->add_option("R", options->in[0], "The picture's red")->required();
  command->add_option("G", options->in[1], "Its green")->required();
  command->add_option("B", options->in[2], "Its blue")->required();
  command->add_option("OUT", options->out, "The colour picture")->required();
  command->callback([options] { join(*options); });
}

}  // namespace tools
