// The table of C functions made complete: what their names and the text of their prototypes add.
#include <cctype>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <unordered_map>

#include "function.h"

namespace nuqi::python {
namespace {

// From nuqi.h, by prototypes.py: each function's section and the names of its parameters.
struct Text {
  const char* name;
  const char* section;
  const char* parameters;
};
constexpr Text kTexts[] = {
#include "prototypes.inc"
};

// The channels, the planes and the mask that nuqiNorm_L2_8u_C3CMR or nuqiCopy_8u_P3C3R tell of. Functions
// without images have no such ending.
void read_name(Function& function) {
  const std::string name = function.name;
  const std::string ending = name.substr(name.rfind('_') + 1);
  if (ending.size() < 3 || ending.back() != 'R') return;
  const auto digit_after = [&](char letter) {
    const std::size_t at = ending.find(letter);
    const bool digit = at + 1 < ending.size() && std::isdigit(ending[at + 1]) != 0;
    return at != std::string::npos && digit ? ending[at + 1] - '0' : 0;
  };
  if (digit_after('C') > 0) function.channels = digit_after('C');
  function.planes = digit_after('P');
  function.masked = ending[ending.size() - 2] == 'M';
}

std::string array_of(int channels, Element element, bool written) {
  const std::string depth = channels == 1 ? ")" : ", " + std::to_string(channels) + ")";
  return "(h, w" + depth + " array of " + name_of(element) + (written ? ", written" : "");
}

// What an argument is, in numpydoc's manner; empty where the parameter is no argument.
std::string argument_text(const Function& function, std::size_t i, bool has_images) {
  const Parameter& parameter = function.parameters[i];
  switch (parameter.kind) {
    case Kind::source: {
      const bool mask = function.masked && function.names[i] == "mask";
      return array_of(mask ? 1 : function.channels, parameter.element, false);
    }
    case Kind::target: {
      const int channels =
          function.target_channels != 0 ? function.target_channels : function.channels;
      return array_of(channels, parameter.element, true);
    }
    case Kind::source_planes: return "sequence of " + array_of(1, parameter.element, false);
    case Kind::target_planes: return "sequence of " + array_of(1, parameter.element, true);
    case Kind::size: return has_images ? "" : "(width, height)";
    case Kind::integer: return "int";
    case Kind::real: return "float";
    case Kind::point: return "(x, y)";
    case Kind::numbers:
      return std::string("(n,) array of ") + name_of(parameter.element) +
             (function.optional ? " or None" : "");
    case Kind::buffer: return "(n,) array of uint8 or None, optional";
    case Kind::convol_state: return "ConvolState";
    case Kind::morph_state: return "MorphState";
    default: return "";
  }
}

const char* result_text(Kind kind) {
  switch (kind) {
    case Kind::strip: return "int";
    case Kind::integer_result: return "int";
    case Kind::float_result:
    case Kind::double_result: return "float";
    case Kind::point_result: return "tuple[int, int]";
    case Kind::region_result: return "FillRegion";
    case Kind::new_convol_state: return "ConvolState";
    case Kind::new_morph_state: return "MorphState";
    default: return "";
  }
}

struct Argument {
  std::string name;
  std::string type;
};

std::vector<Argument> arguments_of(const Function& function) {
  std::vector<Argument> found;
  if (function.body != nullptr) {
    std::istringstream lines(function.arguments);
    for (std::string line; std::getline(lines, line);) {
      const std::size_t colon = line.find(" : ");
      found.push_back({line.substr(0, colon), line.substr(colon + 3)});
    }
    return found;
  }
  bool has_images = false;
  for (std::size_t i = 0; i < function.count; ++i) {
    const Kind kind = function.parameters[i].kind;
    has_images = has_images || kind == Kind::step;
  }
  for (std::size_t i = 0; i < function.count; ++i) {
    const std::string type = argument_text(function, i, has_images);
    if (!type.empty()) found.push_back({function.names[i], type});
  }
  return found;
}

std::string result_of(const Function& function) {
  if (function.body != nullptr) return function.result == nullptr ? "" : function.result;
  std::string all;
  int count = 0;
  for (std::size_t i = 0; i < function.count; ++i) {
    const std::string one = result_text(function.parameters[i].kind);
    if (!one.empty()) all += (count++ > 0 ? ", " : "") + one;
  }
  return count > 1 ? "tuple[" + all + "]" : all;
}

// "name(a, b, buffer=None, /)\n--\n\n" is how CPython tells inspect of a signature.
void document(Function& function, const Text& text) {
  const std::vector<Argument> arguments = arguments_of(function);
  function.most = static_cast<int>(arguments.size());
  function.fewest = function.most - (function.buffer_size != nullptr ? 1 : 0);
  std::string signature;
  std::string list;
  for (const Argument& argument : arguments) {
    const bool optional = argument.type.find("optional") != std::string::npos;
    signature += argument.name + (optional ? "=None, " : ", ");
    list += argument.name + " : " + argument.type + "\n    As nuqi.h says.\n";
  }
  const std::string result = result_of(function);
  function.documentation =
      std::string(function.name) + "(" + signature + "/)\n--\n\n" + text.section +
      ": the C function of this name on arrays.\n\nParameters\n----------\n" + list +
      (result.empty() ? ""
                      : "\nReturns\n-------\n" + result + "\n    As nuqi.h says, in its order.\n") +
      "\nRaises\n------\nStatusError\n    As nuqi.h says.\n";
}

std::vector<Function> make() {
  std::unordered_map<std::string, const Text*> texts;
  for (const Text& text : kTexts) texts[text.name] = &text;
  std::vector<Function> all;
  all.reserve(std::size(kTexts));
  for (const Rows rows : {arith_rows(), statistics_rows(), filter_rows(), feature_rows(),
                          morphology_rows(), match_rows(), fill_rows()}) {
    for (std::size_t i = 0; i < rows.count; ++i) {
      Function function(rows.first[i]);
      const auto text = texts.find(function.name);
      if (text == texts.end()) throw std::logic_error(std::string("nuqi.h lacks ") + function.name);
      std::istringstream names(text->second->parameters);
      for (std::string name; names >> name;) function.names.push_back(name);
      read_name(function);
      document(function, *text->second);
      all.push_back(std::move(function));
    }
  }
  return all;
}

}  // namespace

const std::vector<Function>& functions() {
  static const std::vector<Function> all = make();
  return all;
}

}  // namespace nuqi::python
