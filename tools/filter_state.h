// The states of the library's filters, ended when they go out of scope.
#pragma once

#include <memory>

#include "failure.h"

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

}  // namespace tools
