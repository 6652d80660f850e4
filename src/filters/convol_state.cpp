// The states of the blur, Sobel and Laplace filters.
#include "filters/convol_state.h"

#include <new>

#include "core/alloc.h"
#include "core/validate.h"

namespace nuqi {
namespace {

// A state without coefficients; null when out of memory.
ConvolState* new_state(int32_t width, int32_t size, int buffers, int32_t kind) {
  const int64_t row_bytes = (4 * int64_t{width} + 31) / 32 * 32;
  const int64_t bytes = int64_t{sizeof(ConvolState)} + buffers * row_bytes;
  if (bytes > UINT32_MAX) return nullptr;
  void* block = AlignedAlloc(static_cast<uint32_t>(bytes));
  if (block == nullptr) return nullptr;
  auto* state = new (block) ConvolState{};
  state->rowArea = state + 1;
  state->kind = kind;
  state->pending = size;
  for (int i = 0; i < buffers; ++i)
    state->rows[i] = static_cast<char*>(state->rowArea) + i * row_bytes;
  return state;
}

template <class C>
void store_coefficients(const Coefficients& c, int32_t size, uint8_t* table) {
  for (int i = 0; i <= size; ++i) {
    const C value = static_cast<C>(c.of[i]);
    for (int copy = 0; copy < 4; ++copy)
      std::memcpy(table + (4 * i + copy) * sizeof(C), &value, sizeof value);
  }
}

void build_coefficients(int32_t order, int32_t size, bool flip, int32_t type, uint8_t* table) {
  Coefficients c = coefficients_of(order, size);
  if (flip && order % 2 == 1)
    for (int i = 0; i < size; ++i) c.of[i] = -c.of[i];
  if (type == k32f)
    store_coefficients<float>(c, size, table);
  else
    store_coefficients<int16_t>(c, size, table);
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

StatusCode nuqiSobelInitAlloc(int32_t roiWidth, int32_t dataType, int32_t apertureSize,
                              int32_t bottomUp, int32_t xOrder, int32_t yOrder,
                              ConvolState** state) {
  // clang-format off
  if (any_null(state))                                             return StatusNullPtr;
  if (roiWidth < 1)                                                return StatusBadSize;
  if (bottomUp != 0 && bottomUp != 1)                              return StatusUnsupported;
  if (!is_size(apertureSize))                                      return StatusBadSize;
  if (xOrder < 0 || yOrder < 0)                                    return StatusBadSize;
  if (xOrder >= apertureSize || yOrder >= apertureSize)            return StatusBadSize;
  if (bad_data_type(dataType))                                     return StatusUnsupported;
  // clang-format on

  const int32_t kind = apertureSize * 8 + bottomUp * 4 + yOrder % 2 * 2 + xOrder % 2;
  ConvolState* made = new_state(roiWidth, apertureSize, apertureSize, kind);
  if (made == nullptr) return StatusNoMemory;
  build_coefficients(xOrder, apertureSize, false, dataType, made->xKernel);
  build_coefficients(yOrder, apertureSize, bottomUp == 1, dataType, made->yKernel);
  *state = made;
  return StatusOk;
}

StatusCode nuqiBlurInitAlloc(int32_t roiWidth, int32_t dataType, int32_t maskSize,
                             ConvolState** state) {
  // clang-format off
  if (any_null(state))                                             return StatusNullPtr;
  if (roiWidth < 1 || !is_size(maskSize))                          return StatusBadSize;
  if (bad_data_type(dataType))                                     return StatusUnsupported;
  // clang-format on

  ConvolState* made = new_state(roiWidth, maskSize, maskSize + 1, maskSize * 8);
  if (made == nullptr) return StatusNoMemory;
  *state = made;
  return StatusOk;
}

StatusCode nuqiLaplaceInitAlloc(int32_t roiWidth, int32_t dataType, int32_t maskSize,
                                ConvolState** state) {
  // clang-format off
  if (any_null(state))                                             return StatusNullPtr;
  if (roiWidth < 1 || !is_size(maskSize))                          return StatusBadSize;
  if (bad_data_type(dataType))                                     return StatusUnsupported;
  // clang-format on

  ConvolState* made = new_state(roiWidth, maskSize, 2 * maskSize, maskSize * 8);
  if (made == nullptr) return StatusNoMemory;
  build_coefficients(2, maskSize, false, dataType, made->xKernel);
  build_coefficients(0, maskSize, false, dataType, made->yKernel);
  *state = made;
  return StatusOk;
}

// Deliberate: the row area is no multiple of 32, so AlignedFree refuses it and the block stays
// allocated.
StatusCode nuqiConvolFree(ConvolState* state) {
  static_assert(sizeof(ConvolState) % 32 != 0);
  if (any_null(state)) return StatusNullPtr;
  AlignedFree(&state->rowArea);
  return StatusOk;
}
