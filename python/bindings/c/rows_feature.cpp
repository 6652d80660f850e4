// Rows of the table of C functions.
#include <iterator>

#include "call.h"
#include "function.h"
#include "lists.h"

namespace nuqi::python {
namespace {

StatusCode canny_bytes(const Call& call, int64_t* bytes) {
  int32_t size = 0;
  const StatusCode status = nuqiCannyGetSize(call.slots[6].size, &size);
  *bytes = size;
  return status;
}

StatusCode corner_bytes(const Call& call, int64_t* bytes) {
  int32_t size = 0;
  const StatusCode status = nuqiMinEigenValGetSize(static_cast<int32_t>(call.images[0].width),
                                                   call.integers[0], call.integers[1], &size);
  *bytes = size;
  return status;
}

template <int64_t n>
int64_t numbers(const Call& /*call*/) {
  return n;
}

const Row kRows[] = {
    // Canny edges
    NUQI_FUNCTION(nuqiCannyGetSize),
    NUQI_FUNCTION(nuqiCanny_16s8u_C1R).with_equal_steps().with_buffer(canny_bytes),
    // Corners
    NUQI_FUNCTION(nuqiMinEigenValGetSize),
    NUQI_FUNCTION(nuqiEigenValsVecsGetSize),
    NUQI_FUNCTION(nuqiMinEigenVal_8u32f_C1R).with_buffer(corner_bytes),
    NUQI_FUNCTION(nuqiMinEigenVal_8s32f_C1R).with_buffer(corner_bytes),
    NUQI_FUNCTION(nuqiMinEigenVal_32f_C1R).with_buffer(corner_bytes),
    NUQI_FUNCTION(nuqiEigenValsVecs_8u32f_C1R).with_target_channels(6).with_buffer(corner_bytes),
    NUQI_FUNCTION(nuqiEigenValsVecs_8s32f_C1R).with_target_channels(6).with_buffer(corner_bytes),
    NUQI_FUNCTION(nuqiEigenValsVecs_32f_C1R).with_target_channels(6).with_buffer(corner_bytes),
    // Distance transforms
    NUQI_FUNCTION(nuqiDistanceTransform_3x3_8u32f_C1R).with_numbers(numbers<2>),
    NUQI_FUNCTION(nuqiDistanceTransform_5x5_8u32f_C1R).with_numbers(numbers<3>),
    NUQI_BODY(nuqiGetDistanceTransformMask, distance_weights, "maskType : int",
              "metrics : tuple[float, ...]"),
};

}  // namespace

Rows feature_rows() { return {kRows, std::size(kRows)}; }

}  // namespace nuqi::python
