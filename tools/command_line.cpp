// What is wrong with a command line, said such that it can be mended.
#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <numeric>
#include <vector>

#include "failure.h"
#include "manual.h"

namespace tools {
namespace {

constexpr char kHelpFooter[] =
    "`nuqi help --man` prints all of it as a manual page, `nuqi help --bash` what bash needs to\n"
    "complete commands and options: `source <(nuqi help --bash)`.\n";

// Letters to insert, to remove or to replace.
size_t edits_between(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i);
    for (size_t j = 1; j <= b.size(); ++j) {
      const size_t replaced = diagonal + (a[i - 1] != b[j - 1]);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row.back();
}

// ", do you mean edges?", or nothing where no name comes near.
std::string suggestion(const std::string& word, const std::vector<std::string>& names) {
  std::string best;
  size_t fewest = word.size() / 3 + 2;
  for (const std::string& name : names) {
    const size_t edits = edits_between(word, name);
    if (edits >= fewest) continue;
    fewest = edits;
    best = name;
  }
  return best.empty() ? "" : ", do you mean " + best + "?";
}

std::vector<std::string> names_of_commands(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

void add_names_of_options(const CLI::App& app, std::vector<std::string>& names) {
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
}

std::string unknown_command(const CLI::App& app, const std::string& name) {
  return name + ": is no command" + suggestion(name, names_of_commands(app)) +
         " (`nuqi --help` lists them)";
}

bool is_option(const std::string& word) {
  return word.size() > 1 && word[0] == '-' && (word[1] < '0' || word[1] > '9') && word[1] != '.';
}

// The parser's messages may end in a line break or have several lines.
std::string one_line(std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

std::string check_number(const std::string& text, bool whole) {
  try {
    size_t end = 0;
    if (whole) {
      (void)std::stoll(text, &end);
    } else {
      (void)std::stod(text, &end);
    }
    if (end == text.size()) return "";
  } catch (const std::logic_error&) {
  }
  return text + (whole ? " is no whole number" : " is no number");
}

}  // namespace

void add_help(CLI::App& app) {
  struct Options {
    std::string command;
    bool man = false, bash = false;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("help", "Explains a command");
  command->footer(kHelpFooter);
  command->add_option("COMMAND", options->command, "Its name; without one, all are listed");
  command->add_flag("--man", options->man, "Prints the manual page");
  command->add_flag("--bash", options->bash, "Prints bash's completion");
  command->callback([&app, options] {
    if (options->man) {
      std::cout << manual_page(app);
    } else if (options->bash) {
      std::cout << bash_completion(app);
    } else if (options->command.empty()) {
      std::cout << app.get_formatter()->make_help(&app, "nuqi", CLI::AppFormatMode::Normal);
    } else {
      const auto commands = app.get_subcommands(
          [&](const CLI::App* one) { return one->get_name() == options->command; });
      if (commands.empty()) throw UserError(unknown_command(app, options->command));
      std::cout << commands.front()->help("nuqi");
    }
  });
}

void check_values(CLI::App& app) {
  for (CLI::Option* option : app.get_options()) {
    if (option->get_items_expected_max() == 0) continue;  // a flag
    const std::string type = option->get_type_name();
    const bool whole = type.find("INT") == 0, number = whole || type.find("FLOAT") == 0;
    // Before the checks of ranges, which would name the range alone.
    option->transform(CLI::Validator(
        [whole, number](const std::string& text) {
          if (text.empty()) return std::string("must not be empty");
          return number ? check_number(text, whole) : std::string();
        },
        ""));
  }
  for (CLI::App* command : app.get_subcommands({})) check_values(*command);
}

std::string sentence_on(const CLI::App& app, const CLI::ParseError& error) {
  const auto parsed = app.get_subcommands();
  const CLI::App& command = parsed.empty() ? app : *parsed.front();
  const std::string hint =
      " (`nuqi " + (parsed.empty() ? "" : command.get_name() + " ") + "--help` explains)";
  // An unknown option makes others of its line look wrong: it comes first.
  const std::vector<std::string> unknown = app.remaining(true);
  const auto option = std::find_if(unknown.begin(), unknown.end(), is_option);
  if (option != unknown.end()) {
    const std::string name = option->substr(0, option->find('='));
    std::vector<std::string> names;
    add_names_of_options(command, names);
    if (&command != &app) add_names_of_options(app, names);
    return name + ": is no option" +
           (parsed.empty() ? "" : " of `nuqi " + command.get_name() + "`") +
           suggestion(name, names) + hint;
  }
  if (!unknown.empty() && parsed.empty()) return unknown_command(app, unknown.front());
  if (!unknown.empty() && dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    return unknown.front() + ": is one argument too many" + hint;
  }
  return one_line(error.what()) + hint;
}

}  // namespace tools
