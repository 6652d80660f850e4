// The command-line program nuqi: reads the command and turns every failure into one sentence.
#include <fcntl.h>
#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <nuqi/hpp/error.hpp>
#include <string>

#include "command_line.h"
#include "commands/commands.h"
#include "core/isa.h"
#include "failure.h"
#include "pictures/row_writer.h"
#include "report.h"

namespace {

constexpr void (*kCommands[])(CLI::App&) = {
    tools::add_tour,       tools::add_edges,   tools::add_corners, tools::add_distance,
    tools::add_background, tools::add_blur,    tools::add_sobel,   tools::add_laplace,
    tools::add_morphology, tools::add_pyramid, tools::add_fill,    tools::add_regions,
    tools::add_stats,      tools::add_diff,    tools::add_split,   tools::add_join,
    tools::add_profile,    tools::add_motion,  tools::add_match,   tools::add_info,
    tools::add_help,
};

constexpr char kDescription[] = "Computer-vision primitives at work on pictures.";

constexpr char kFooter[] =
    "Pictures are read from PNG, JPEG and PNM files (P1 to P7, the last being PAM) of any\n"
    "kind, and from standard input where the name is -. Where a command cannot keep alpha it\n"
    "is laid over white, and 16 bits are rounded to 8: a note says so. Colour becomes grey by\n"
    "(77 red + 150 green + 29 blue + 128) / 256, in integers. A camera's orientation is\n"
    "applied. The ending of an output's name chooses its format: .png, .jpg, .jpeg, .pgm,\n"
    ".ppm, .pnm or .pam; - is PNG on standard output. It appears when it is whole; after a\n"
    "failure, what was there is still there. Symbolic links are followed, and a file that is\n"
    "replaced leaves its mode. Times are of the library's calls alone.\n"
    "\n"
    "The commands blur, sobel, laplace, erode, dilate, open, close and gradient take pictures\n"
    "larger than memory: up to 1,000,000 pixels along a side, of which they hold a few rows.\n"
    "Interlaced PNG, progressive JPEG and pictures that a camera's orientation turns must fit\n"
    "into memory, with up to 178 million pixels, which is the limit of the other commands.\n"
    "\n"
    "Where the library's contract surprises its callers, the help of stats, edges and blur\n"
    "tells how the program copes.\n"
    "\n"
    "Exit codes: 0 success, 2 wrong arguments or a file that cannot be read, is no picture or\n"
    "cannot be written, 1 any other failure. `nuqi COMMAND --help` and `nuqi help COMMAND`\n"
    "explain a command.\n";

void force_isa_named(const std::string& name) {
  for (const nuqi::Isa level : nuqi::kEveryIsa) {
    if (level > nuqi::best_isa() || name != nuqi::name_of(level)) continue;
    nuqi::force_isa(level);
    return;
  }
  throw tools::UserError("--isa " + name + ": `nuqi info` lists what this machine runs");
}

int fail(const std::string& sentence, int code) {
  std::fprintf(stderr, "nuqi: %s\n", sentence.c_str());
  return code;
}

// A file that took the number of a closed stream would receive what is meant for that.
void occupy_closed_streams() {
  for (int stream = 0; stream < 3; ++stream) {
    if (fcntl(stream, F_GETFD) < 0) open("/dev/null", O_RDONLY);
  }
}

void run(int argc, char** argv) {
  CLI::App app{kDescription, "nuqi"};
  app.footer(kFooter);
  app.set_version_flag("--version", std::to_string(NUQI_VERSION_MAJOR) + "." +
                                        std::to_string(NUQI_VERSION_MINOR) + "." +
                                        std::to_string(NUQI_VERSION_PATCH));
  app.add_option_function<std::string>("--isa", force_isa_named,
                                       "The instruction set to use instead of the best one")
      ->type_name("NAME");
  app.add_flag_callback("--quiet", tools::be_quiet, "Says nothing of work that succeeds");
  app.add_option_function<int>("--compression", tools::set_png_compression,
                               "How hard PNG files are compressed: 0 not at all, 1 fast, 9 small")
      ->check(CLI::Range(0, 9))
      ->default_str("1");
  app.fallthrough();
  app.require_subcommand(0, 1);  // files may be named like commands
  for (auto* add : kCommands) add(app);
  tools::check_values(app);
  try {
    app.parse(argc, argv);
    if (app.get_subcommands().empty())
      throw tools::UserError("a command is missing (`nuqi --help` explains)");
  } catch (const CLI::Success& help) {
    app.exit(help);
  } catch (const CLI::ParseError& error) {
    throw tools::UserError(tools::sentence_on(app, error));
  }
  tools::finish_stdout();
}

}  // namespace

int main(int argc, char** argv) {
  occupy_closed_streams();
  std::signal(SIGXFSZ, SIG_IGN);  // a file beyond the shell's limit is a write that fails
  try {
    run(argc, argv);
    return 0;
  } catch (const tools::UserError& error) {
    return fail(error.what(), 2);
  } catch (const std::bad_alloc&) {
    return fail("out of memory", 1);
  } catch (const nuqi::Error& error) {
    return fail(error.status() == StatusNoMemory ? "out of memory" : error.what(), 1);
  } catch (const std::exception& error) {
    return fail(error.what(), 1);
  }
}
