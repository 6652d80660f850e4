// The library's filters: their states, ended when they go out of scope, and the stages that use them.
#pragma once

#include <memory>

#include "failure.h"
#include "pictures/strips.h"

namespace tools {

struct EndState {
  void operator()(ConvolState* state) const { nuqiConvolFree(state); }
};
using FilterState = std::unique_ptr<ConvolState, EndState>;

constexpr int32_t kOfBytes = 1, kOfFloats = 9;  // what a state's filter reads

inline FilterState blur_state(int32_t width, int32_t type, int32_t size) {
  ConvolState* state = nullptr;
  require_ok(nuqiBlurInitAlloc(width, type, size, &state), "nuqiBlurInitAlloc");
  return FilterState(state);
}

inline FilterState sobel_state(int32_t width, int32_t type, int32_t size, int32_t x_order,
                               int32_t y_order) {
  ConvolState* state = nullptr;
  require_ok(nuqiSobelInitAlloc(width, type, size, 0, x_order, y_order, &state),
             "nuqiSobelInitAlloc");
  return FilterState(state);
}

inline FilterState laplace_state(int32_t width, int32_t type, int32_t size) {
  ConvolState* state = nullptr;
  require_ok(nuqiLaplaceInitAlloc(width, type, size, &state), "nuqiLaplaceInitAlloc");
  return FilterState(state);
}

using FilterStage = LibraryStage<uint8_t, int16_t, FilterState>;

inline FilterStage filter_stage(FilterStage::Call call, FilterState state, RoiSize picture,
                                int32_t size) {
  return {call, std::move(state), picture, 1, {size / 2, size / 2}};
}

inline FilterStage blur_stage(RoiSize picture, int32_t size) {
  return filter_stage({"nuqiBlur_8u16s_C1R", nuqiBlur_8u16s_C1R},
                      blur_state(picture.width, kOfBytes, size), picture, size);
}

inline FilterStage sobel_stage(RoiSize picture, int32_t size, int32_t x_order, int32_t y_order) {
  return filter_stage({"nuqiSobel_8u16s_C1R", nuqiSobel_8u16s_C1R},
                      sobel_state(picture.width, kOfBytes, size, x_order, y_order), picture, size);
}

inline FilterStage laplace_stage(RoiSize picture, int32_t size) {
  return filter_stage({"nuqiLaplace_8u16s_C1R", nuqiLaplace_8u16s_C1R},
                      laplace_state(picture.width, kOfBytes, size), picture, size);
}

}  // namespace tools
