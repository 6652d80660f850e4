// The tour's section on erosion and dilation.
#include <algorithm>
#include <nuqi/nuqi.hpp>

#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "The least and the greatest pixel that an element covers. An erosion and a dilation with the "
    "element turned around make an opening, which removes what the element does not fit into; the "
    "other way round they make a closing, which fills gaps. Rectangles and crosses are quick at "
    "any "
    "size; any other element is a mask. Pictures come whole or in strips.";

using nuqi::Element;
using nuqi::Extremum;

const std::vector<std::string> kCautions = {
    "Releasing a state frees nothing: <code>nuqiMorphologyFree</code> ends its use and leaves its "
    "memory until the program ends. Make one state for a width and an element, keep it, and use it "
    "for all pictures.",
};

std::string mask_name(int32_t side) { return "ellipse" + std::to_string(side); }

std::vector<Declaration> declarations() {
  std::vector<Declaration> all = {
      {"src", "static uint8_t src[height * width];\nint32_t src_step = width;"},
      {"dst", "static uint8_t dst[height * width];\nint32_t dst_step = width;"},
      {"state", "MorphState* state = NULL;  /* keep it for all pictures of this width */"},
  };
  for (const int32_t side : {7, 9}) {
    std::string numbers;
    const Element element = Element::ellipse(side, side);
    for (const int32_t inside : element.mask())
      numbers += (numbers.empty() ? "" : ", ") + std::to_string(inside);
    all.push_back(
        {mask_name(side), "static const int32_t " + mask_name(side) + "[] = {" + numbers + "};"});
  }
  return all;
}

// The call that makes an element's state.
std::string making_of(const Element& element, int32_t shape) {
  const auto pair = [](const char* type, int32_t a, int32_t b) {
    return std::string("(") + type + "){" + std::to_string(a) + ", " + std::to_string(b) + "}, ";
  };
  const bool masked = !element.mask().empty();
  return "nuqiMorphologyInitAlloc(width, 1, 1, " +
         pair("RoiSize", element.size().width, element.size().height) +
         pair("PixelPoint", element.anchor().x, element.anchor().y) + std::to_string(shape) + ", " +
         (masked ? mask_name(element.size().width) : "NULL") + ", &state)";
}

struct Step {
  Plane<uint8_t> result;
  Call call;
};

struct NamedFunction {
  const char* name;
  decltype(nuqiErodeStrip_8u_C1R)* function;
};

#define NUQI_NAMED(function) \
  { #function, function }
constexpr int32_t kLibrarysEllipse = 2;  // no Element has this shape

NamedFunction function_of(int32_t shape, Extremum extremum) {
  static constexpr NamedFunction kFunctions[3][2] = {
      {NUQI_NAMED(nuqiErodeStrip_Rect_8u_C1R), NUQI_NAMED(nuqiDilateStrip_Rect_8u_C1R)},
      {NUQI_NAMED(nuqiErodeStrip_Cross_8u_C1R), NUQI_NAMED(nuqiDilateStrip_Cross_8u_C1R)},
      {NUQI_NAMED(nuqiErodeStrip_8u_C1R), NUQI_NAMED(nuqiDilateStrip_8u_C1R)}};
  return kFunctions[std::min(shape, kLibrarysEllipse)][extremum == Extremum::least ? 0 : 1];
}
#undef NUQI_NAMED

// One call, with the element's box and mask in the library's shape.
Step apply_shape(Extremum extremum, const Element& element, int32_t shape,
                 const Plane<uint8_t>& grey) {
  constexpr int32_t kBytes = 1, kChannels = 1;
  Step step{Plane<uint8_t>(grey.size), {}};
  MorphState* state = nullptr;
  require_ok(nuqiMorphologyInitAlloc(grey.size.width, kBytes, kChannels, element.size(),
                                     element.anchor(), shape, element.mask().data(), &state),
             "nuqiMorphologyInitAlloc");
  const NamedFunction call = function_of(shape, extremum);
  const std::string text =
      std::string(call.name) + "(src, src_step, dst, dst_step, &roi, state, 0)";
  step.call = timed_call(text.c_str(), [&] {
                RoiSize roi = grey.size;
                return call.function(grey.data(), grey.step(), step.result.data(),
                                     step.result.step(), &roi, state, 0);
              }).made_by(making_of(element, shape));
  nuqiMorphologyFree(state);
  return step;
}
Step apply(Extremum extremum, const Element& element, const Plane<uint8_t>& grey) {
  return apply_shape(extremum, element, element.shape(), grey);
}

// The one step that is compared with a plain loop.
Figure erosion(const std::string& title, const std::string& note, int32_t side,
               const Plane<uint8_t>& grey) {
  const Plane<uint8_t> padded = plain::padded(grey, side / 2);
  Plane<uint8_t> least(grey.size);
  Step step = apply(Extremum::least, Element::rectangle(side, side), grey);
  step.call = std::move(step.call).against([&] { plain::erosion(padded, side, least); });
  plain::require_same(least.values, step.result.values, "nuqiErodeStrip_Rect_8u_C1R");
  Figure figure(title, "The picture after: " + title, picture_of(step.result));
  figure.note(note).with(std::move(step.call));
  return figure;
}

Figure one_step(const std::string& title, const std::string& note, Step step) {
  Figure figure(title, "The picture after: " + title, picture_of(step.result));
  figure.note(note).with(std::move(step.call));
  return figure;
}

// An opening begins with the least, a closing with the greatest.
Figure two_steps(const std::string& title, const std::string& note, Extremum first,
                 const Element& element, const Plane<uint8_t>& edges) {
  const Extremum second = first == Extremum::least ? Extremum::greatest : Extremum::least;
  Step one = apply(first, element, edges), two = apply(second, element.turned(), one.result);
  Figure figure(title, "The edges after: " + title, picture_of(two.result), Shrink::brightest);
  figure.note(note).with(std::move(one.call)).with(std::move(two.call));
  return figure;
}

Figure gradient(const Plane<uint8_t>& grey) {
  const Element cross = Element::cross(3, 3);
  Step greatest = apply(Extremum::greatest, cross, grey),
       least = apply(Extremum::least, cross, grey);
  Plane<uint8_t> difference = greatest.result;
  for (size_t i = 0; i < difference.values.size(); ++i) {
    difference.values[i] = uint8_t(difference.values[i] - least.result.values[i]);
  }
  Figure figure("Gradient, 3 × 3", "The difference of dilation and erosion: bright along edges",
                picture_of(difference), Shrink::brightest);
  figure.note("Dilation minus erosion: how steep the picture is.")
      .with(std::move(greatest.call))
      .with(std::move(least.call));
  return figure;
}

// The pixels of an ellipse, dark, filled or as the library has it: a lone dark pixel erodes to the element
// turned.
Plane<uint8_t> ellipse(int32_t side, bool filled) {
  const Element element = filled ? Element::ellipse(side, side) : Element::rectangle(side, side);
  Plane<uint8_t> sheet(element.size());
  sheet.values.assign(sheet.values.size(), 255);
  const PixelPoint at = element.turned().anchor();
  sheet.values[size_t(at.y) * size_t(side) + size_t(at.x)] = 0;
  Plane<uint8_t> covered =
      apply_shape(Extremum::least, element, filled ? element.shape() : kLibrarysEllipse, sheet)
          .result;
  std::reverse(covered.values.begin(), covered.values.end());
  return covered;
}

// The pixels of two elements as squares, side by side.
Picture side_by_side(const Plane<uint8_t>& left, const Plane<uint8_t>& right) {
  constexpr int32_t kSquare = 20, kHalf = 320;
  Picture sheet({2 * kHalf, kHalf}, 1);
  std::fill(sheet.pixels.begin(), sheet.pixels.end(), uint8_t{190});
  uint8_t* pixel = sheet.pixels.data();
  for (int32_t y = 0; y < kHalf; ++y) {
    for (int32_t x = 0; x < 2 * kHalf; ++x, ++pixel) {
      const Plane<uint8_t>& element = x < kHalf ? left : right;
      const int32_t u = x % kHalf - (kHalf - element.size.width * kSquare) / 2;
      const int32_t v = y - (kHalf - element.size.height * kSquare) / 2;
      const PixelPoint at{u / kSquare, v / kSquare};
      const bool line = u % kSquare == kSquare - 1 || v % kSquare == kSquare - 1;
      if (u < 0 || v < 0 || at.x >= element.size.width || at.y >= element.size.height || line)
        continue;
      *pixel = element.values[size_t(at.y) * size_t(element.size.width) + size_t(at.x)];
    }
  }
  return sheet;
}

Figure two_ellipses(int32_t side) {
  Figure figure("Two ellipses, " + std::to_string(side) + " × " + std::to_string(side),
                "The pixels of two elements, inside dark: a filled one, and one with an empty row",
                side_by_side(ellipse(side, true), ellipse(side, false)));
  figure.note(
      "Left one drawn by this program and passed as a mask (<code>shape</code> 100), right the "
      "library's own (<code>shape</code> 2), whose middle row is empty at odd heights. Dark pixels "
      "belong to the element.");
  return figure;
}

}  // namespace

Section morphology_section(const Scene& scene) {
  const Plane<uint8_t>& grey = scene.grey;
  Plane<uint8_t> edges(grey.size);
  nuqi::canny(grey, edges, 100, 200);
  Section section{"morphology", "Erosion and dilation", kText, {}, {}, kCautions, declarations()};
  section.before.emplace_back("The picture in grey", "The picture in grey levels",
                              picture_of(grey));
  section.before.emplace_back("Its edges", "The picture's edges, white on black", picture_of(edges),
                              Shrink::brightest);
  const auto add = [&](Figure figure) { section.after.push_back(std::move(figure)); };
  add(erosion("Erosion, rectangle 9 × 9", "Dark spreads, in squares.", 9, grey));
  add(one_step("Dilation, rectangle 9 × 9", "Bright spreads.",
               apply(Extremum::greatest, Element::rectangle(9, 9), grey)));
  add(one_step("Erosion, cross 9 × 9", "Along the row and the column of each pixel.",
               apply(Extremum::least, Element::cross(9, 9), grey)));
  add(one_step("Dilation, cross 9 × 9", "Bright points become crosses.",
               apply(Extremum::greatest, Element::cross(9, 9), grey)));
  add(one_step("Dilation, filled ellipse 9 × 9", "Drawn by this program and passed as a mask.",
               apply(Extremum::greatest, Element::ellipse(9, 9), grey)));
  add(one_step("Dilation, the library's ellipse 9 × 9", "Without the row of the pixel itself.",
               apply_shape(Extremum::greatest, Element::rectangle(9, 9), kLibrarysEllipse, grey)));
  add(two_ellipses(9));
  add(gradient(grey));
  add(two_steps("Closing of the edges, ellipse 7 × 7", "Gaps up to the element's size are filled.",
                Extremum::greatest, Element::ellipse(7, 7), edges));
  add(two_steps("Opening of the edges, rectangle 5 × 1", "Only edges level for five pixels stay.",
                Extremum::least, Element::rectangle(5, 1), edges));
  return section;
}

}  // namespace tools
