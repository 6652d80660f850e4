// The structuring elements of erosions and dilations, and the stages that use them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "pictures/strips.h"

namespace CLI {
class App;
}

namespace tools {

struct Element {
  static constexpr int32_t kRectangle = 0, kCross = 1, kLibrarysEllipse = 2, kMask = 100;

  int32_t shape = kRectangle;
  RoiSize size{3, 3};
  PixelPoint anchor{1, 1};
  std::vector<int32_t> mask{};  // of shape kMask: not 0 is inside
  std::string name{};           // "5x5 ellipse"
};

// The arguments that choose one.
struct ElementOptions {
  std::string element = "rect", size, anchor;
};

// Adds --element, --size and --anchor.
void add_element_options(CLI::App& command, ElementOptions& options);

// Throws UserError where the arguments fit no element, or their file is none.
Element element_of(const ElementOptions& options);

Element ellipse(RoiSize size);  // filled, its anchor in the middle

// By 180 degrees. Dilation does not reflect its element, so that the second step of an opening or
// closing is the inverse of the first with this one.
Element turned(const Element& element);

struct EndMorphState {
  void operator()(MorphState* state) const { nuqiMorphologyFree(state); }
};
using MorphOwner = std::unique_ptr<MorphState, EndMorphState>;

enum class Extremum { least, greatest };  // of erosion, of dilation

using MorphStage = LibraryStage<uint8_t, uint8_t, MorphOwner>;
MorphStage::Call morph_call(Extremum extremum, const Element& element, int channels);
MorphOwner morph_state(const Element& element, int32_t width, int channels);
MorphStage morph_stage(Extremum extremum, const Element& element, RoiSize picture, int channels);

}  // namespace tools
