// The program's help in other forms.
#include "manual.h"

#include <CLI/CLI.hpp>
#include <vector>

namespace tools {
namespace {

// Text that troff does not take for requests or escapes.
std::string troff(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const bool begins = result.empty() || result.back() == '\n';
    if (begins && (c == '.' || c == '\'')) result += "\\&";
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else {
      result += c;
    }
  }
  return result;
}

// Paragraphs stand apart by empty lines.
std::string paragraphs(const std::string& text) {
  std::string result = ".PP\n";
  for (const char c : troff(text)) {
    result += c == '\n' && result.back() == '\n' ? ".PP\n" : std::string(1, c);
  }
  if (result.back() != '\n') result += '\n';
  return result;
}

std::string synopsis(const CLI::App& command) {
  std::string text = ".B nuqi " + command.get_name() + "\n";
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_positional()) continue;
    const std::string name = ".I " + troff(option->get_name(true)) + "\n";
    text += option->get_required() ? name : "[\n" + name + "]\n";
  }
  return text + "[options]\n";
}

std::string explained(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : command.get_options()) {
    const std::string name = option->get_name(option->get_positional());
    const std::string type = option->get_items_expected_max() == 0 || option->get_positional()
                                 ? ""
                                 : " " + option->get_type_name();
    const std::string standard = option->get_default_str();
    text += ".TP\n.B " + troff(name + type) + "\n" + troff(option->get_description()) +
            (standard.empty() ? "" : " (" + troff(standard) + ")") + "\n";
  }
  return text;
}

// The words of "TEXT:{sobel,scharr}".
std::string values_of(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const size_t begin = type.find('{'), end = type.find('}');
  if (begin == std::string::npos || end == std::string::npos) return "";
  std::string words = type.substr(begin + 1, end - begin - 1);
  for (char& c : words) c = c == ',' ? ' ' : c;
  return words;
}

std::string options_of(const CLI::App& command) {
  std::string words;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) words += " --" + name;
  }
  return words;
}

}  // namespace

std::string manual_page(const CLI::App& app) {
  std::string text = ".TH NUQI 1 \"\" \"nuqi " + app.version() + "\"\n.SH NAME\nnuqi \\- " +
                     troff(app.get_description()) + "\n.SH SYNOPSIS\n.B nuqi\n.I COMMAND\n" +
                     "[arguments]\n.SH DESCRIPTION\n" + paragraphs(app.get_footer()) +
                     ".SH OPTIONS\nof every command:\n" + explained(app) + ".SH COMMANDS\n";
  for (const CLI::App* command : app.get_subcommands({})) {
    text += ".SS " + troff(command->get_name()) + "\n" + synopsis(*command) + ".PP\n" +
            troff(command->get_description()) + ".\n" + explained(*command) +
            paragraphs(command->get_footer());
  }
  return text;
}

std::string bash_completion(const CLI::App& app) {
  std::string commands, options, values;
  for (const CLI::App* command : app.get_subcommands({})) {
    const std::string& name = command->get_name();
    commands += (commands.empty() ? "" : " ") + name;
    options += "    " + name + ") words+=\"" + options_of(*command) + "\" ;;\n";
    for (const CLI::Option* option : command->get_options()) {
      const std::string words = values_of(*option);
      if (words.empty()) continue;
      for (const std::string& long_name : option->get_lnames()) {
        values.append("    \"").append(name).append(" --").append(long_name);
        values.append("\") choices=\"").append(words).append("\" ;;\n");
      }
    }
  }
  return "# Completes the commands and options of nuqi in bash.\n"
         "_nuqi() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}\n"
         "  local commands=\"" +
         commands +
         "\" command= choices= i\n"
         "  for ((i = 1; i < COMP_CWORD; ++i)); do\n"
         "    [[ \" $commands \" == *\" ${COMP_WORDS[i]} \"* ]] && command=${COMP_WORDS[i]} && "
         "break\n"
         "  done\n"
         "  local words=\"" +
         options_of(app) +
         "\"\n"
         "  case $command in\n"
         "    \"\" | help) [[ $word != -* ]] && choices=$commands ;;\n"
         "  esac\n"
         "  case $command in\n" +
         options +
         "  esac\n"
         "  case \"$command $before\" in\n" +
         values +
         "  esac\n"
         "  if [[ -n $choices ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$choices\" -- \"$word\")\n"
         "  elif [[ $word == -* ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
         "  else\n"
         "    mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
         "  fi\n"
         "}\n"
         "complete -o filenames -F _nuqi nuqi\n";
}

}  // namespace tools
