// Erosion and dilation, strip by strip.
#include "morph/strip.h"

#include <algorithm>

#include "core/stripe.h"
#include "core/validate.h"
#include "morph/morph_state.h"

namespace nuqi {
namespace {

template <class T>
struct StripCall {
  Image<const T> src;
  Image<T> dst;
  RoiSize* roi;
  MorphState* state;
  int32_t border;
};

// 0 where rows are to be processed, else the status of the call.
template <class T>
StatusCode check(const StripCall<T>& call, Shape shape, int32_t channels) {
  const auto& [src, dst, roi, state, border] = call;
  const int32_t type = sizeof(T) == 4 ? k32f : k8u;
  // clang-format off
  if (any_null(src.data, dst.data, state, roi))                    return StatusNullPtr;
  if (roi->width < 1 || roi->width > state->maxWidth)              return StatusBadSize;
  if (roi->height < 0)                                             return StatusBadSize;
  if (state->dataType != type || state->channels != channels)      return StatusBadContext;
  if (state->shape != shape)                                       return StatusBadContext;
  if (short_row(src, roi->width, channels) || uneven(src))         return StatusBadStep;
  if (short_row(dst, roi->width, channels) || uneven(dst))         return StatusBadStep;
  if (!is_phase(border))                                           return StatusBadArg;
  // clang-format on
  if ((state->held == 0 && !starts_image(border)) || (roi->height == 0 && border != 2)) {
    roi->height = 0;
    return StatusNothingToDo;
  }
  return StatusOk;
}

template <class T>
const auto& kernels_of(Shape shape) {
  const MorphKernelsOf<T>& kernels = strip_kernels().template of_type<T>();
  return shape == kRectangle ? kernels.rectangle : shape == kCross ? kernels.cross : kernels.mask;
}

template <class T>
void run(const StripCall<T>& call, Extremum extremum, Shape shape) {
  MorphState& state = *call.state;
  const Stripe stripe = {.height = call.roi->height,
                         .above = state.anchorY,
                         .below = state.maskHeight - 1 - state.anchorY,
                         .first = starts_image(call.border),
                         .last = ends_image(call.border),
                         .held = state.held};
  const int32_t slots = state.maskHeight + spare_rows(state.dataType);
  if (stripe.first)
    for (int64_t i = 0; i < slots; ++i) state.rows[i] = state.firstRow + i * state.rowStep;

  const RingState ring = kernels_of<T>(shape)[static_cast<int>(extremum)](StripJob<T>{
      .src = call.src,
      .dst = call.dst,
      .count = int64_t{call.roi->width} * state.channels,
      .channels = state.channels,
      .height = stripe.height,
      .end = stripe.end(),
      .first = stripe.first,
      .element = {state.maskWidth, state.maskHeight},
      .anchor = {state.anchorX, state.anchorY},
      .inside = state.inside,
      .rows = state.rows,
      .slots = slots,
      .held = stripe.lead(),
  });
  std::rotate(state.rows, state.rows + ring.oldest, state.rows + slots);
  state.held = ring.held;
  call.roi->height = static_cast<int32_t>(stripe.produced());
}

template <Extremum extremum, Shape shape, int channels, class T>
StatusCode strip(const StripCall<T>& call) {
  if (const StatusCode status = check(call, shape, channels)) return status;
  run(call, extremum, shape);
  return StatusOk;
}

constexpr Extremum kErode = Extremum::least, kDilate = Extremum::greatest;

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T, channels, extremum, shape)                                                    \
  StatusCode name(const T* src, int32_t srcStep, T* dst, int32_t dstStep, RoiSize* roi,              \
                  MorphState* state, int32_t border) {                                               \
    return strip<extremum, shape, channels, T>({{src, srcStep}, {dst, dstStep}, roi, state, border}); \
  }

ENTRY(nuqiErodeStrip_8u_C1R,         uint8_t, 1, kErode,  kArbitrary)
ENTRY(nuqiErodeStrip_8u_C3R,         uint8_t, 3, kErode,  kArbitrary)
ENTRY(nuqiErodeStrip_8u_C4R,         uint8_t, 4, kErode,  kArbitrary)
ENTRY(nuqiErodeStrip_32f_C1R,        float,   1, kErode,  kArbitrary)
ENTRY(nuqiErodeStrip_32f_C3R,        float,   3, kErode,  kArbitrary)
ENTRY(nuqiErodeStrip_32f_C4R,        float,   4, kErode,  kArbitrary)
ENTRY(nuqiErodeStrip_Rect_8u_C1R,    uint8_t, 1, kErode,  kRectangle)
ENTRY(nuqiErodeStrip_Rect_8u_C3R,    uint8_t, 3, kErode,  kRectangle)
ENTRY(nuqiErodeStrip_Rect_8u_C4R,    uint8_t, 4, kErode,  kRectangle)
ENTRY(nuqiErodeStrip_Rect_32f_C1R,   float,   1, kErode,  kRectangle)
ENTRY(nuqiErodeStrip_Rect_32f_C3R,   float,   3, kErode,  kRectangle)
ENTRY(nuqiErodeStrip_Rect_32f_C4R,   float,   4, kErode,  kRectangle)
ENTRY(nuqiErodeStrip_Cross_8u_C1R,   uint8_t, 1, kErode,  kCross)
ENTRY(nuqiErodeStrip_Cross_8u_C3R,   uint8_t, 3, kErode,  kCross)
ENTRY(nuqiErodeStrip_Cross_8u_C4R,   uint8_t, 4, kErode,  kCross)
ENTRY(nuqiErodeStrip_Cross_32f_C1R,  float,   1, kErode,  kCross)
ENTRY(nuqiErodeStrip_Cross_32f_C3R,  float,   3, kErode,  kCross)
ENTRY(nuqiErodeStrip_Cross_32f_C4R,  float,   4, kErode,  kCross)
ENTRY(nuqiDilateStrip_8u_C1R,        uint8_t, 1, kDilate, kArbitrary)
ENTRY(nuqiDilateStrip_8u_C3R,        uint8_t, 3, kDilate, kArbitrary)
ENTRY(nuqiDilateStrip_8u_C4R,        uint8_t, 4, kDilate, kArbitrary)
ENTRY(nuqiDilateStrip_32f_C1R,       float,   1, kDilate, kArbitrary)
ENTRY(nuqiDilateStrip_32f_C3R,       float,   3, kDilate, kArbitrary)
ENTRY(nuqiDilateStrip_32f_C4R,       float,   4, kDilate, kArbitrary)
ENTRY(nuqiDilateStrip_Rect_8u_C1R,   uint8_t, 1, kDilate, kRectangle)
ENTRY(nuqiDilateStrip_Rect_8u_C3R,   uint8_t, 3, kDilate, kRectangle)
ENTRY(nuqiDilateStrip_Rect_8u_C4R,   uint8_t, 4, kDilate, kRectangle)
ENTRY(nuqiDilateStrip_Rect_32f_C1R,  float,   1, kDilate, kRectangle)
ENTRY(nuqiDilateStrip_Rect_32f_C3R,  float,   3, kDilate, kRectangle)
ENTRY(nuqiDilateStrip_Rect_32f_C4R,  float,   4, kDilate, kRectangle)
ENTRY(nuqiDilateStrip_Cross_8u_C1R,  uint8_t, 1, kDilate, kCross)
ENTRY(nuqiDilateStrip_Cross_8u_C3R,  uint8_t, 3, kDilate, kCross)
ENTRY(nuqiDilateStrip_Cross_8u_C4R,  uint8_t, 4, kDilate, kCross)
ENTRY(nuqiDilateStrip_Cross_32f_C1R, float,   1, kDilate, kCross)
ENTRY(nuqiDilateStrip_Cross_32f_C3R, float,   3, kDilate, kCross)
ENTRY(nuqiDilateStrip_Cross_32f_C4R, float,   4, kDilate, kCross)

#undef ENTRY
