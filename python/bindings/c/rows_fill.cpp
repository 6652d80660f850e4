// Rows of the table of C functions.
#include <iterator>

#include "call.h"
#include "function.h"

namespace nuqi::python {
namespace {

// The formulas of nuqi.h, which the queries compute modulo 2^32.
StatusCode fill_bytes(const Call& call, int64_t* bytes) {
  *bytes = 6 * call.images[0].width * call.images[0].height;
  return StatusOk;
}

StatusCode gradient_fill_bytes(const Call& call, int64_t* bytes) {
  fill_bytes(call, bytes);
  *bytes += (call.images[0].width + 2) * (call.images[0].height + 2);
  return StatusOk;
}

const Row kRows[] = {
    // Flood fills
    NUQI_FUNCTION(nuqiFloodFillGetSize),
    NUQI_FUNCTION(nuqiFloodFill_4Con_8u_C1IR).with_buffer(fill_bytes),
    NUQI_FUNCTION(nuqiFloodFill_8Con_8u_C1IR).with_buffer(fill_bytes),
    NUQI_FUNCTION(nuqiFloodFill_4Con_32f_C1IR).with_buffer(fill_bytes),
    NUQI_FUNCTION(nuqiFloodFill_8Con_32f_C1IR).with_buffer(fill_bytes),
    NUQI_FUNCTION(nuqiFloodFillGetSize_Grad),
    NUQI_FUNCTION(nuqiFloodFill_Grad4Con_8u_C1IR).with_buffer(gradient_fill_bytes),
    NUQI_FUNCTION(nuqiFloodFill_Grad8Con_8u_C1IR).with_buffer(gradient_fill_bytes),
    NUQI_FUNCTION(nuqiFloodFill_Grad4Con_32f_C1IR).with_buffer(gradient_fill_bytes),
    NUQI_FUNCTION(nuqiFloodFill_Grad8Con_32f_C1IR).with_buffer(gradient_fill_bytes),
};

}  // namespace

Rows fill_rows() { return {kRows, std::size(kRows)}; }

}  // namespace nuqi::python
