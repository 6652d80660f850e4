// nuqi join: a colour picture of three grey ones.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nuqi/hpp/channels.hpp>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "pictures/row_reader.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes a colour picture whose channels are the grey levels of three pictures of one\n"
    "size, and its alpha those of a fourth: of 16 bits where one of them has 16.\n";

struct Options {
  std::string in[3], out, alpha;
};

template <class T>
void write_joined(const std::vector<Plane<T>>& channels, const std::string& out) {
  PictureOf<T> picture(channels[0].size, int(channels.size()));
  if (channels.size() == 4) {
    nuqi::join(channels[0], channels[1], channels[2], channels[3],
               view_of(picture).template as<4>());
  } else {
    nuqi::join(channels[0], channels[1], channels[2], view_of(picture).template as<3>());
  }
  write_picture(out, picture);
}

template <class T>
std::vector<Plane<T>> read_planes(const std::vector<std::unique_ptr<RowReader>>& rows,
                                  const std::vector<std::string>& names) {
  std::vector<Plane<T>> planes;
  for (size_t i = 0; i < rows.size(); ++i)
    planes.push_back(grey_of(whole_picture<T>(*rows[i], names[i])));
  return planes;
}

void join(const Options& options) {
  check_picture_output(options.out);
  std::vector<std::string> names(std::begin(options.in), std::end(options.in));
  if (!options.alpha.empty()) names.push_back(options.alpha);
  std::vector<std::unique_ptr<RowReader>> rows;
  bool deep = false;
  for (const std::string& name : names) {
    rows.push_back(open_rows(name, Form::grey, Depth::stored));
    check_same_size(name, rows.back()->size(), names[0], rows[0]->size());
    deep = deep || rows.back()->format().bits == 16;
  }
  if (deep) {
    write_joined(read_planes<float>(rows, names), options.out);
  } else {
    write_joined(read_planes<uint8_t>(rows, names), options.out);
  }
  report("%s: %s, joined of %s channels\n", options.out.c_str(), size_text(rows[0]->size()).c_str(),
         names.size() == 4 ? "four" : "three");
}

}  // namespace

void add_join(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("join", "Joins channels to a colour picture");
  command->footer(kFooter);
  command->add_option("R", options->in[0], "The picture's red")->required();
  command->add_option("G", options->in[1], "Its green")->required();
  command->add_option("B", options->in[2], "Its blue")->required();
  command->add_option("OUT", options->out, "The colour picture")->required();
  command->add_option("--alpha", options->alpha, "Its alpha")->type_name("PICTURE");
  command->callback([options] { join(*options); });
}

}  // namespace tools
