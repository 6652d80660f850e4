// nuqi info: the version, the instruction sets and the functions.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "core/isa.h"
#include "nuqi/nuqi.h"

namespace tools {
namespace {

struct Function {
  std::string family, name;
};

// Made from the public header when the build is configured.
const std::vector<Function> kFunctions = {
#include "functions.inc"
};

void print_levels() {
  std::printf("instruction set  %s\n", nuqi::name_of(nuqi::isa()));
  std::printf("available       ");
  for (const nuqi::Isa level : nuqi::kEveryIsa) {
    if (level <= nuqi::best_isa()) std::printf(" %s", nuqi::name_of(level));
  }
  std::printf("\n");
}

void print_families(bool names) {
  std::printf("functions        %zu\n", kFunctions.size());
  for (size_t begin = 0, end = 0; begin < kFunctions.size(); begin = end) {
    while (end < kFunctions.size() && kFunctions[end].family == kFunctions[begin].family) ++end;
    std::printf("  %3zu  %s\n", end - begin, kFunctions[begin].family.c_str());
    for (size_t i = begin; names && i < end; ++i) {
      std::printf("         %s\n", kFunctions[i].name.c_str());
    }
  }
}

}  // namespace

void add_info(CLI::App& app) {
  auto names = std::make_shared<bool>(false);
  CLI::App* command =
      app.add_subcommand("info", "Prints the version, the instruction sets and the functions");
  command->add_flag("--names", *names, "Also prints each function's name");
  command->callback([names] {
    std::printf("nuqi             %d.%d.%d\n", NUQI_VERSION_MAJOR, NUQI_VERSION_MINOR,
                NUQI_VERSION_PATCH);
    print_levels();
    print_families(*names);
  });
}

}  // namespace tools
