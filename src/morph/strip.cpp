// Erosion and dilation, strip by strip.
#include "morph/strip.h"

#include <algorithm>
#include <cstring>

#include "core/stripe.h"
#include "core/validate.h"
#include "morph/morph_state.h"
#include "morph/rectangle.h"

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
  // clang-format off
  if (any_null(src.data, dst.data, state, roi))                    return StatusNullPtr;
  if (roi->width < 1 || roi->width > state->maxWidth)              return StatusBadSize;
  if (roi->height < 0)                                             return StatusBadSize;
  if (state->dataType != data_type_of<T>() || state->channels != channels)      return StatusBadContext;
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
const auto& kernels_of(int32_t shape) {
  const MorphKernelsOf<T>& kernels = strip_kernels().template of_type<T>();
  return shape == kRectangle ? kernels.rectangle : shape == kCross ? kernels.cross : kernels.mask;
}

int64_t bytes_beside(const MorphState& state) {
  return (int64_t{state.maskWidth} - 1) * state.channels * element_bytes(state.dataType);
}

// Elements whose results come straight from the caller's rows: small ones, and rectangles of bytes.
bool is_small(const MorphState& state) {
  const RoiSize size = {state.maskWidth, state.maskHeight};
  const bool walked = size.width == size.height && (size.width == 3 || size.width == 5);
  const bool centred = 2 * state.anchorX == size.width - 1 && 2 * state.anchorY == size.height - 1;
  if (size.height > kSmallHeight || bytes_beside(state) > kSmallBytes) return false;
  return state.shape == kArbitrary || (walked && (centred || state.shape == kRectangle));
}
bool is_rectangle(const MorphState& state) {
  return state.shape == kRectangle && state.dataType == k8u &&
         state.maskHeight <= kRectangleHeight && bytes_beside(state) <= kRectangleBytes;
}

// The ring holds source rows.
template <class T>
void run_rows(const StripCall<T>& call, const Stripe& stripe, int64_t at_once,
              void (*kernel)(const ElementJob<T>&)) {
  MorphState& state = *call.state;
  const int32_t width = call.roi->width * state.channels;
  const StripeRows<T> source = {stripe, call.src, state.rows};
  const T* rows[kRectangleSources];
  for (int64_t y = 0; y < stripe.produced(); y += at_once) {
    const int64_t count = std::min(at_once, stripe.produced() - y);
    source.collect(y - stripe.lead(), count + stripe.around(), rows);
    kernel(ElementJob<T>{
        .rows = rows,
        .dst = {row_of(call.dst, y), call.dst.step},
        .count = width,
        .height = count,
        .channels = state.channels,
        .element = {state.maskWidth, state.maskHeight},
        .anchor = {state.anchorX, state.anchorY},
        .inside = state.inside,
    });
  }
  // Unlike StripeRows::keep, which filters need for the order of their buffers: of rows held already the
  // pointers move up; the others are copied.
  const int kept = stripe.kept();
  const int64_t first = stripe.end() - kept;
  const int moved = !stripe.first && first < 0 ? static_cast<int>(-first) : 0;
  source.collect(first + moved, kept - moved, rows);
  if (moved > 0)
    std::rotate(state.rows, state.rows + stripe.held - moved, state.rows + stripe.held);
  for (int i = moved; i < kept; ++i)
    std::memcpy(state.rows[i], rows[i - moved], row_bytes(call.src, width));
  state.held = kept;
}

template <class T>
void run_small(const StripCall<T>& call, const Stripe& stripe, Extremum extremum) {
  const WindowKernelsOf<T>& kernels = window_kernels().template of_type<T>();
  const MorphState& state = *call.state;
  const int which = static_cast<int>(extremum), size = state.maskWidth == 3 ? 0 : 1;
  const auto kernel = state.shape == kRectangle ? kernels.rectangle[which][size]
                      : state.shape == kCross   ? kernels.cross[which][size]
                                                : mask_kernels().template of_type<T>().of[which];
  const int64_t row = int64_t{call.roi->width} * state.channels * int64_t{sizeof(T)};
  run_rows(call, stripe, row > kLongRow ? kLongWindowRows : kWindowRows, kernel);
}

template <class T>
void run_rectangle(const StripCall<T>& call, const Stripe& stripe, Extremum extremum) {
  if constexpr (sizeof(T) == 1)
    run_rows(call, stripe, kRectangleRows, rectangle_kernels().of[static_cast<int>(extremum)]);
}

// The ring holds expanded rows, which the kernels reduce as they need it.
template <class T>
void run_large(const StripCall<T>& call, const Stripe& stripe, Extremum extremum) {
  MorphState& state = *call.state;
  const int32_t slots = state.maskHeight + spare_rows(state.dataType);
  const RingState ring = kernels_of<T>(state.shape)[static_cast<int>(extremum)](StripJob<T>{
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
}

template <class T>
void run(const StripCall<T>& call, Extremum extremum) {
  MorphState& state = *call.state;
  const Stripe stripe = {.height = call.roi->height,
                         .above = state.anchorY,
                         .below = state.maskHeight - 1 - state.anchorY,
                         .first = starts_image(call.border),
                         .last = ends_image(call.border),
                         .held = state.held};
  const int64_t slots = int64_t{state.maskHeight} + spare_rows(state.dataType);
  if (stripe.first)
    for (int64_t i = 0; i < slots; ++i) state.rows[i] = state.firstRow + i * state.rowStep;
  if (is_small(state))
    run_small(call, stripe, extremum);
  else if (is_rectangle(state))
    run_rectangle(call, stripe, extremum);
  else
    run_large(call, stripe, extremum);
  call.roi->height = static_cast<int32_t>(stripe.produced());
}

template <Extremum extremum, Shape shape, int channels, class T>
StatusCode strip(const StripCall<T>& call) {
  if (const StatusCode status = check(call, shape, channels)) return status;
  run(call, extremum);
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
