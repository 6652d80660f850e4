// The structuring elements of erosions and dilations, and the stages that use them.
#include "commands/element.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <new>

#include "commands/pairs.h"
#include "failure.h"

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

PixelPoint middle_of(RoiSize size) { return {size.width / 2, size.height / 2}; }

PixelPoint anchor_of(const std::string& text, RoiSize size) {
  if (text.empty()) return middle_of(size);
  PixelPoint anchor{};
  if (!read_pair(text, ',', anchor.x, anchor.y)) {
    throw UserError("--anchor " + text + ": is no position, which is written as X,Y");
  }
  if (anchor.x < 0 || anchor.y < 0 || anchor.x >= size.width || anchor.y >= size.height) {
    throw UserError("--anchor " + text + ": lies outside the element, which is " + size_text(size));
  }
  return anchor;
}

Element mask_of_picture(File file, const std::string& path) {
  const auto rows = open_rows(std::move(file), path, Form::grey);
  Element element{Element::kMask, rows->size(), {}};
  check_element_size(path, element.size);
  for (const uint8_t level : whole_picture(*rows, path).pixels) {
    element.mask.push_back(level >= 128);
  }
  return element;
}

// Lines of 0 and 1; spaces and commas between them, and empty lines, say nothing.
Element mask_of_text(const File& file, const std::string& path) {
  Element element{Element::kMask, {0, 0}, {}};
  int32_t length = 0;
  const auto end_line = [&] {
    if (length == 0) return;
    if (element.size.height++ == 0) element.size.width = length;
    if (length != element.size.width) {
      throw UserError(path + ": its lines are not of one length");
    }
    length = 0;
  };
  for (const uint8_t c : read_rest(file, path)) {
    if (c == '0' || c == '1') {
      element.mask.push_back(c == '1');
      ++length;
    } else if (c == '\n') {
      end_line();
    } else if (std::string(" \t\r,").find(char(c)) == std::string::npos) {
      throw UserError(path + ": is neither a picture nor a text of 0 and 1");
    }
  }
  end_line();
  check_element_size(path, element.size);
  return element;
}

Element mask_of_file(const std::string& path) {
  File file = open_input(path);
  const bool picture = may_be_picture(file, path);
  Element element = picture ? mask_of_picture(std::move(file), path) : mask_of_text(file, path);
  if (std::count(element.mask.begin(), element.mask.end(), 0) == long(element.mask.size())) {
    throw UserError(path + ": has no pixel inside the element");
  }
  element.name = "mask";
  return element;
}

#define NUQI_NAMED(function) \
  { #function, function }
constexpr MorphStage::Call kCalls[3][2][3] = {
    // by shape, extremum; 1, 3, 4 channels
    {{NUQI_NAMED(nuqiErodeStrip_Rect_8u_C1R), NUQI_NAMED(nuqiErodeStrip_Rect_8u_C3R),
      NUQI_NAMED(nuqiErodeStrip_Rect_8u_C4R)},
     {NUQI_NAMED(nuqiDilateStrip_Rect_8u_C1R), NUQI_NAMED(nuqiDilateStrip_Rect_8u_C3R),
      NUQI_NAMED(nuqiDilateStrip_Rect_8u_C4R)}},
    {{NUQI_NAMED(nuqiErodeStrip_Cross_8u_C1R), NUQI_NAMED(nuqiErodeStrip_Cross_8u_C3R),
      NUQI_NAMED(nuqiErodeStrip_Cross_8u_C4R)},
     {NUQI_NAMED(nuqiDilateStrip_Cross_8u_C1R), NUQI_NAMED(nuqiDilateStrip_Cross_8u_C3R),
      NUQI_NAMED(nuqiDilateStrip_Cross_8u_C4R)}},
    {{NUQI_NAMED(nuqiErodeStrip_8u_C1R), NUQI_NAMED(nuqiErodeStrip_8u_C3R),
      NUQI_NAMED(nuqiErodeStrip_8u_C4R)},
     {NUQI_NAMED(nuqiDilateStrip_8u_C1R), NUQI_NAMED(nuqiDilateStrip_8u_C3R),
      NUQI_NAMED(nuqiDilateStrip_8u_C4R)}},
};
#undef NUQI_NAMED

}  // namespace

void add_element_options(CLI::App& command, ElementOptions& options) {
  command.add_option("--element", options.element, "rect, cross, ellipse or a FILE")
      ->capture_default_str();
  command.add_option("--size", options.size, "Its width and height; 3x3")->type_name("WxH");
  command
      .add_option("--anchor", options.anchor, "Which pixel of it lies on the result's; the middle")
      ->type_name("X,Y");
}

Element ellipse(RoiSize size) {
  Element element{Element::kMask, size, middle_of(size)};
  // Offsets from the middle are u / 2 and v / 2, half axes a / 8 and b / 8: an eighth of a pixel less
  // than touches the rectangle, which makes 3x3 a cross and no square.
  const int64_t a = 4 * int64_t{size.width} - 1, b = 4 * int64_t{size.height} - 1;
  for (int64_t v = 1 - size.height; v < size.height; v += 2) {
    for (int64_t u = 1 - size.width; u < size.width; u += 2) {
      element.mask.push_back(16 * (u * u * b * b + v * v * a * a) <= a * a * b * b);
    }
  }
  element.name = size_text(size) + " ellipse";
  return element;
}

Element element_of(const ElementOptions& options) {
  Element element;
  if (options.element == "rect" || options.element == "cross") {
    element.shape = options.element == "rect" ? Element::kRectangle : Element::kCross;
    element.size = size_of(options.size);
    element.name =
        size_text(element.size) + (element.shape == Element::kRectangle ? " rectangle" : " cross");
  } else if (options.element == "ellipse") {
    element = ellipse(size_of(options.size));
  } else {
    if (!options.size.empty()) throw UserError("--size: " + options.element + " has its own");
    element = mask_of_file(options.element);
    element.name = size_text(element.size) + " mask";
  }
  element.anchor = anchor_of(options.anchor, element.size);
  return element;
}

Element turned(const Element& element) {
  Element result = element;
  std::reverse(result.mask.begin(), result.mask.end());
  result.anchor = {element.size.width - 1 - element.anchor.x,
                   element.size.height - 1 - element.anchor.y};
  return result;
}

MorphStage::Call morph_call(Extremum extremum, const Element& element, int channels) {
  return kCalls[std::min(element.shape, 2)][int(extremum)][channels == 1 ? 0 : channels - 2];
}

MorphOwner morph_state(const Element& element, int32_t width, int channels) {
  constexpr int32_t kBytes = 1;
  const int32_t* const mask = element.mask.empty() ? nullptr : element.mask.data();
  MorphState* state = nullptr;
  const StatusCode status = nuqiMorphologyInitAlloc(width, kBytes, channels, element.size,
                                                    element.anchor, element.shape, mask, &state);
  if (status == StatusNoMemory) throw std::bad_alloc();  // long rows times a high element
  require_ok(status, "nuqiMorphologyInitAlloc");
  return MorphOwner(state);
}

MorphStage morph_stage(Extremum extremum, const Element& element, RoiSize picture, int channels) {
  return {morph_call(extremum, element, channels),
          morph_state(element, picture.width, channels),
          picture,
          channels,
          {element.anchor.y, element.size.height - 1 - element.anchor.y}};
}

}  // namespace tools
