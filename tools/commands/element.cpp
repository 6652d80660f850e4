// The structuring elements of erosions and dilations, from arguments.
#include "commands/element.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

#include "commands/pairs.h"
#include "failure.h"
#include "pictures/row_reader.h"

namespace tools {
namespace {

constexpr int32_t kLongestSide = 1000;

void check_element_size(const std::string& name, RoiSize size) {
  if (size.width >= 1 && size.height >= 1 && size.width <= kLongestSide &&
      size.height <= kLongestSide) {
    return;
  }
  throw UserError(name + ": an element has 1 to " + std::to_string(kLongestSide) +
                  " pixels along a side, not " + size_text(size));
}

RoiSize size_of(const std::string& text) {
  RoiSize size{3, 3};
  if (!text.empty() && !read_pair(text, 'x', size.width, size.height)) {
    throw UserError("--size " + text + ": is no size, which is written as WxH");
  }
  check_element_size("--size", size);
  return size;
}

nuqi::Element anchored(const nuqi::Element& element, const std::string& text) {
  if (text.empty()) return element;
  PixelPoint anchor{};
  if (!read_pair(text, ',', anchor.x, anchor.y)) {
    throw UserError("--anchor " + text + ": is no position, which is written as X,Y");
  }
  const RoiSize size = element.size();
  if (anchor.x < 0 || anchor.y < 0 || anchor.x >= size.width || anchor.y >= size.height) {
    throw UserError("--anchor " + text + ": lies outside the element, which is " + size_text(size));
  }
  return element.anchored(anchor.x, anchor.y);
}

Plane<uint8_t> mask_of_picture(File file, const std::string& path) {
  const auto rows = open_rows(std::move(file), path, Form::grey);
  check_element_size(path, rows->size());
  Plane<uint8_t> mask(rows->size());
  mask.values = whole_picture<uint8_t>(*rows, path).pixels;
  for (uint8_t& level : mask.values) level = level >= 128;
  return mask;
}

// Lines of 0 and 1; spaces and commas between them, and empty lines, say nothing.
Plane<uint8_t> mask_of_text(const File& file, const std::string& path) {
  Plane<uint8_t> mask;
  int32_t length = 0;
  const auto end_line = [&] {
    if (length == 0) return;
    if (mask.size.height++ == 0) mask.size.width = length;
    if (length != mask.size.width) throw UserError(path + ": its lines are not of one length");
    length = 0;
  };
  for (const uint8_t c : read_rest(file, path)) {
    if (c == '0' || c == '1') {
      mask.values.push_back(c == '1');
      ++length;
    } else if (c == '\n') {
      end_line();
    } else if (std::string(" \t\r,").find(char(c)) == std::string::npos) {
      throw UserError(path + ": is neither a picture nor a text of 0 and 1");
    }
  }
  end_line();
  check_element_size(path, mask.size);
  return mask;
}

nuqi::Element mask_of_file(const std::string& path) {
  File file = open_input(path);
  const bool picture = may_be_picture(file, path);
  const Plane<uint8_t> mask =
      picture ? mask_of_picture(std::move(file), path) : mask_of_text(file, path);
  if (std::count(mask.values.begin(), mask.values.end(), 0) == long(mask.values.size())) {
    throw UserError(path + ": has no pixel inside the element");
  }
  return nuqi::Element::arbitrary(nuqi::as_view(mask));
}

}  // namespace

void add_element_options(CLI::App& command, ElementOptions& options) {
  command.add_option("--element", options.element, "rect, cross, ellipse or a FILE")
      ->capture_default_str();
  command.add_option("--size", options.size, "Its width and height; 3x3")->type_name("WxH");
  command
      .add_option("--anchor", options.anchor, "Which pixel of it lies on the result's; the middle")
      ->type_name("X,Y");
}

NamedElement element_of(const ElementOptions& options) {
  struct Shape {
    nuqi::Element (*make)(int32_t width, int32_t height);
    const char* name;
  };
  const std::map<std::string, Shape> shapes = {{"rect", {nuqi::Element::rectangle, " rectangle"}},
                                               {"cross", {nuqi::Element::cross, " cross"}},
                                               {"ellipse", {nuqi::Element::ellipse, " ellipse"}}};
  const auto named = [&](const nuqi::Element& element, const std::string& name) {
    return NamedElement{anchored(element, options.anchor), size_text(element.size()) + name};
  };
  if (const auto shape = shapes.find(options.element); shape != shapes.end()) {
    const auto [width, height] = size_of(options.size);
    return named(shape->second.make(width, height), shape->second.name);
  }
  if (!options.size.empty()) throw UserError("--size: " + options.element + " has its own");
  return named(mask_of_file(options.element), " mask");
}

}  // namespace tools
