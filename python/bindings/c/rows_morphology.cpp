// Rows of the table of C functions.
#include <iterator>

#include "function.h"
#include "state.h"

namespace nuqi::python {
namespace {

int64_t element_entries(const Call& call) {
  const RoiSize size = call.size_argument;
  return size.width < 1 || size.height < 1 ? 0 : int64_t{size.width} * size.height;
}

const Row kRows[] = {
    // Morphology states
    NUQI_FUNCTION(nuqiMorphologyInitAlloc).with_numbers(element_entries, true),
    NUQI_BODY(nuqiMorphologyFree, free_state, "state : MorphState", nullptr),
    // Erosion and dilation
    NUQI_FUNCTION(nuqiErodeStrip_Rect_8u_C1R),
    NUQI_FUNCTION(nuqiErodeStrip_Rect_8u_C3R),
    NUQI_FUNCTION(nuqiErodeStrip_Rect_8u_C4R),
    NUQI_FUNCTION(nuqiErodeStrip_Rect_32f_C1R),
    NUQI_FUNCTION(nuqiErodeStrip_Rect_32f_C3R),
    NUQI_FUNCTION(nuqiErodeStrip_Rect_32f_C4R),
    NUQI_FUNCTION(nuqiErodeStrip_Cross_8u_C1R),
    NUQI_FUNCTION(nuqiErodeStrip_Cross_8u_C3R),
    NUQI_FUNCTION(nuqiErodeStrip_Cross_8u_C4R),
    NUQI_FUNCTION(nuqiErodeStrip_Cross_32f_C1R),
    NUQI_FUNCTION(nuqiErodeStrip_Cross_32f_C3R),
    NUQI_FUNCTION(nuqiErodeStrip_Cross_32f_C4R),
    NUQI_FUNCTION(nuqiErodeStrip_8u_C1R),
    NUQI_FUNCTION(nuqiErodeStrip_8u_C3R),
    NUQI_FUNCTION(nuqiErodeStrip_8u_C4R),
    NUQI_FUNCTION(nuqiErodeStrip_32f_C1R),
    NUQI_FUNCTION(nuqiErodeStrip_32f_C3R),
    NUQI_FUNCTION(nuqiErodeStrip_32f_C4R),
    NUQI_FUNCTION(nuqiDilateStrip_Rect_8u_C1R),
    NUQI_FUNCTION(nuqiDilateStrip_Rect_8u_C3R),
    NUQI_FUNCTION(nuqiDilateStrip_Rect_8u_C4R),
    NUQI_FUNCTION(nuqiDilateStrip_Rect_32f_C1R),
    NUQI_FUNCTION(nuqiDilateStrip_Rect_32f_C3R),
    NUQI_FUNCTION(nuqiDilateStrip_Rect_32f_C4R),
    NUQI_FUNCTION(nuqiDilateStrip_Cross_8u_C1R),
    NUQI_FUNCTION(nuqiDilateStrip_Cross_8u_C3R),
    NUQI_FUNCTION(nuqiDilateStrip_Cross_8u_C4R),
    NUQI_FUNCTION(nuqiDilateStrip_Cross_32f_C1R),
    NUQI_FUNCTION(nuqiDilateStrip_Cross_32f_C3R),
    NUQI_FUNCTION(nuqiDilateStrip_Cross_32f_C4R),
    NUQI_FUNCTION(nuqiDilateStrip_8u_C1R),
    NUQI_FUNCTION(nuqiDilateStrip_8u_C3R),
    NUQI_FUNCTION(nuqiDilateStrip_8u_C4R),
    NUQI_FUNCTION(nuqiDilateStrip_32f_C1R),
    NUQI_FUNCTION(nuqiDilateStrip_32f_C3R),
    NUQI_FUNCTION(nuqiDilateStrip_32f_C4R),
};

}  // namespace

Rows morphology_rows() { return {kRows, std::size(kRows)}; }

}  // namespace nuqi::python
