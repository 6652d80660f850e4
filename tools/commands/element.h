// The structuring elements of erosions and dilations, from arguments.
#pragma once

#include <nuqi/nuqi.hpp>
#include <string>

namespace CLI {
class App;
}

namespace tools {

// The arguments that choose one.
struct ElementOptions {
  std::string element = "rect", size, anchor;
};

struct NamedElement {
  nuqi::Element element;
  std::string name;  // "5x5 ellipse"
};

// Adds --element, --size and --anchor.
void add_element_options(CLI::App& command, ElementOptions& options);

// Throws UserError where the arguments fit no element, or their file is none.
NamedElement element_of(const ElementOptions& options);

}  // namespace tools
