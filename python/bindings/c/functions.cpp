// The table of C functions made complete: what their names and those of their parameters add.
#include <cctype>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <unordered_map>

#include "function.h"

namespace nuqi::python {
namespace {

// From nuqi.h, by header.py: the names of each function's parameters.
struct Prototyped {
  const char* name;
  const char* parameters;
};
constexpr Prototyped kPrototyped[] = {
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

std::string array_of(const char* size, int channels, Element element, bool written) {
  const std::string depth = channels == 1 ? ")" : ", " + std::to_string(channels) + ")";
  return "(" + std::string(size) + depth + " array of " + name_of(element) +
         (written ? ", written" : "");
}

// The height and width of an image that is written, h and w being those of the first image.
const char* target_size(Sizes sizes) {
  switch (sizes) {
    case Sizes::half: return "h // 2, w // 2";
    case Sizes::twice: return "2 * h, 2 * w";
    case Sizes::matches: return "h - m + 1, w - n + 1";
    default: return "h, w";
  }
}

// What an argument is, in numpydoc's manner; empty where the parameter is no argument.
std::string argument_text(const Function& function, std::size_t i, bool has_images) {
  const Parameter& parameter = function.parameters[i];
  switch (parameter.kind) {
    case Kind::source: {
      const bool mask = function.masked && function.names[i] == "mask";
      const bool second = function.sizes == Sizes::matches && i > 0;
      return array_of(second ? "m, n" : "h, w", mask ? 1 : function.channels, parameter.element,
                      false);
    }
    case Kind::target: {
      const int channels =
          function.target_channels != 0 ? function.target_channels : function.channels;
      return array_of(target_size(function.sizes), channels, parameter.element, true);
    }
    case Kind::source_planes: return "sequence of " + array_of("h, w", 1, parameter.element, false);
    case Kind::target_planes: return "sequence of " + array_of("h, w", 1, parameter.element, true);
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

std::vector<Item> items_of(const char* lines) {
  std::vector<Item> found;
  std::istringstream all(lines == nullptr ? "" : lines);
  for (std::string line; std::getline(all, line);) {
    const std::size_t colon = line.find(" : ");
    found.push_back({line.substr(0, colon), line.substr(colon + 3)});
  }
  return found;
}

void find_items(Function& function) {
  if (function.body != nullptr) {
    function.arguments = items_of(function.argument_lines);
    function.results = items_of(function.result_line);
    return;
  }
  bool has_images = false;
  for (std::size_t i = 0; i < function.count; ++i)
    has_images = has_images || function.parameters[i].kind == Kind::step;
  for (std::size_t i = 0; i < function.count; ++i) {
    std::string type = argument_text(function, i, has_images);
    if (!type.empty()) function.arguments.push_back({function.names[i], std::move(type)});
    const std::string result = result_text(function.parameters[i].kind);
    if (!result.empty()) function.results.push_back({function.names[i], result});
  }
}

void find_signature(Function& function) {
  const bool buffer = function.buffer_size != nullptr;
  function.most = static_cast<int>(function.arguments.size());
  function.fewest = function.most - (buffer ? 1 : 0);
  function.signature = "(";
  for (const Item& argument : function.arguments)
    function.signature += (function.signature.size() > 1 ? ", " : "") + argument.name;
  function.signature += buffer ? "=None)" : ")";
}

std::vector<Function> make() {
  std::unordered_map<std::string, const char*> parameters;
  for (const Prototyped& one : kPrototyped) parameters[one.name] = one.parameters;
  std::vector<Function> all;
  all.reserve(std::size(kPrototyped));
  for (const Rows rows : {arith_rows(), statistics_rows(), filter_rows(), feature_rows(),
                          morphology_rows(), match_rows(), fill_rows()}) {
    for (std::size_t i = 0; i < rows.count; ++i) {
      Function function(rows.first[i]);
      const auto found = parameters.find(function.name);
      if (found == parameters.end())
        throw std::logic_error(std::string("nuqi.h lacks ") + function.name);
      std::istringstream names(found->second);
      for (std::string name; names >> name;) function.names.push_back(name);
      read_name(function);
      find_items(function);
      find_signature(function);
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
