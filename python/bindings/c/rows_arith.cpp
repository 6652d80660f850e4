// Rows of the table of C functions.
#include <iterator>

#include "function.h"
#include "lists.h"

namespace nuqi::python {
namespace {

const Row kRows[] = {
    // Accumulation
    NUQI_FUNCTION(nuqiAdd_8u32f_C1IR),
    NUQI_FUNCTION(nuqiAdd_8s32f_C1IR),
    NUQI_FUNCTION(nuqiAdd_32f_C1IR),
    NUQI_FUNCTION(nuqiAddSquare_8u32f_C1IR),
    NUQI_FUNCTION(nuqiAddSquare_8s32f_C1IR),
    NUQI_FUNCTION(nuqiAddSquare_32f_C1IR),
    NUQI_FUNCTION(nuqiAddProduct_8u32f_C1IR),
    NUQI_FUNCTION(nuqiAddProduct_8s32f_C1IR),
    NUQI_FUNCTION(nuqiAddProduct_32f_C1IR),
    NUQI_FUNCTION(nuqiAddWeighted_8u32f_C1IR),
    NUQI_FUNCTION(nuqiAddWeighted_8s32f_C1IR),
    NUQI_FUNCTION(nuqiAddWeighted_32f_C1IR),
    NUQI_FUNCTION(nuqiAdd_8u32f_C1IMR),
    NUQI_FUNCTION(nuqiAdd_8s32f_C1IMR),
    NUQI_FUNCTION(nuqiAdd_32f_C1IMR),
    NUQI_FUNCTION(nuqiAddSquare_8u32f_C1IMR),
    NUQI_FUNCTION(nuqiAddSquare_8s32f_C1IMR),
    NUQI_FUNCTION(nuqiAddSquare_32f_C1IMR),
    NUQI_FUNCTION(nuqiAddProduct_8u32f_C1IMR),
    NUQI_FUNCTION(nuqiAddProduct_8s32f_C1IMR),
    NUQI_FUNCTION(nuqiAddProduct_32f_C1IMR),
    NUQI_FUNCTION(nuqiAddWeighted_8u32f_C1IMR),
    NUQI_FUNCTION(nuqiAddWeighted_8s32f_C1IMR),
    NUQI_FUNCTION(nuqiAddWeighted_32f_C1IMR),
    // Absolute difference
    NUQI_FUNCTION(nuqiAbsDiff_8u_C1R).may_be_in_place(),
    NUQI_FUNCTION(nuqiAbsDiff_32f_C1R).may_be_in_place(),
    NUQI_FUNCTION(nuqiAbsDiffC_8u_C1R).may_be_in_place(),
    NUQI_FUNCTION(nuqiAbsDiffC_32f_C1R).may_be_in_place(),
    // Copies
    NUQI_FUNCTION(nuqiCopy_8u_C3P3R),
    NUQI_FUNCTION(nuqiCopy_8u_C4P4R),
    NUQI_FUNCTION(nuqiCopy_32f_C3P3R),
    NUQI_FUNCTION(nuqiCopy_32f_C4P4R),
    NUQI_FUNCTION(nuqiCopy_8u_P3C3R),
    NUQI_FUNCTION(nuqiCopy_8u_P4C4R),
    NUQI_FUNCTION(nuqiCopy_32f_P3C3R),
    NUQI_FUNCTION(nuqiCopy_32f_P4C4R),
    // Motion history
    NUQI_FUNCTION(nuqiUpdateMotionHistory_8u32f_C1IR),
    // Arctangent
    NUQI_BODY(nuqibFastArctan_32f, arctan,
              "y : (n,) array of float32\nx : (n,) array of float32\nangle : (n,) array of "
              "float32, written",
              nullptr),
    // Line samples
    NUQI_BODY(nuqiSampleLine_8u_C1R, (sample_line<uint8_t, 1>),
              "src : (h, w) array of uint8\ndst : (n,) array of uint8, written\nstart : (x, "
              "y)\nend : (x, y)",
              "count : int"),
    NUQI_BODY(nuqiSampleLine_8u_C3R, (sample_line<uint8_t, 3>),
              "src : (h, w, 3) array of uint8\ndst : (n, 3) array of uint8, written\nstart : (x, "
              "y)\nend : (x, y)",
              "count : int"),
    NUQI_BODY(nuqiSampleLine_32f_C1R, (sample_line<float, 1>),
              "src : (h, w) array of float32\ndst : (n,) array of float32, written\nstart : (x, "
              "y)\nend : (x, y)",
              "count : int"),
    NUQI_BODY(nuqiSampleLine_32f_C3R, (sample_line<float, 3>),
              "src : (h, w, 3) array of float32\ndst : (n, 3) array of float32, written\nstart : "
              "(x, y)\nend : (x, y)",
              "count : int"),
};

}  // namespace

Rows arith_rows() { return {kRows, std::size(kRows)}; }

}  // namespace nuqi::python
