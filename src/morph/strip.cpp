// Erosion and dilation, strip by strip.
#include "morph/strip.h"

#include <algorithm>
#include <cstring>

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

// Runs one strip: rows enter the ring, results leave it.
template <Extremum extremum, Shape shape, class T>
class Strip {
 public:
  explicit Strip(const StripCall<T>& call)
      : call_(call),
        state_(*call.state),
        stripe_({.height = call.roi->height,
                 .above = state_.anchorY,
                 .below = state_.maskHeight - 1 - state_.anchorY,
                 .first = starts_image(call.border),
                 .last = ends_image(call.border),
                 .held = state_.held}),
        channels_(state_.channels),
        count_(int64_t{call.roi->width} * channels_),
        around_(int64_t{state_.maskWidth - 1} * channels_),
        held_(stripe_.lead()) {}

  void run() {
    if (stripe_.first) reset_ring();
    T* dst = call_.dst.data;
    for (int64_t y = 0; y < stripe_.end(); ++y) {
      enter(y);
      if (held_ < state_.maskHeight) continue;
      leave(dst);
      dst = row_of(Image<T>{dst, call_.dst.step}, 1);
    }
    call_.roi->height = static_cast<int32_t>(stripe_.produced());
    state_.held = held_;
  }

 private:
  static constexpr int kWhich = static_cast<int>(extremum);

  T* ring(int64_t i) const { return reinterpret_cast<T*>(state_.rows[i]); }
  size_t ring_bytes() const { return static_cast<size_t>(count_ + around_) * sizeof(T); }

  void reset_ring() {
    const int rows = state_.maskHeight + spare_rows(state_.dataType);
    for (int i = 0; i < rows; ++i) state_.rows[i] = state_.firstRow + int64_t{i} * state_.rowStep;
  }

  // Row y of the strip becomes the ring's newest; below the image, a copy of the row before.
  void enter(int64_t y) {
    T* row = ring(held_);
    if (y < stripe_.height) {
      expand(row_of(call_.src, y), row);
      if (shape == kRectangle && state_.maskWidth > 1)
        kernels().along_row[kWhich](row, count_, channels_, state_.maskWidth);
    } else {
      std::memcpy(row, ring(held_ - 1), ring_bytes());
    }
    if (stripe_.first && y == 0)
      for (int i = 0; i < state_.anchorY; ++i) std::memcpy(ring(i), row, ring_bytes());
    ++held_;
    if (shape == kRectangle) widen_windows();
  }

  // The row with copies of its first and last pixel around it.
  void expand(const T* src, T* row) {
    const int64_t left = int64_t{state_.anchorX} * channels_, right = around_ - left;
    T* to = row + left;
    if (shape == kArbitrary)
      kernels().to_ring(src, to, count_);
    else
      std::memcpy(to, src, static_cast<size_t>(count_) * sizeof(T));
    for (int64_t i = 1; i <= left; ++i) to[-i] = to[channels_ - i];
    for (int64_t i = 0; i < right; ++i) to[count_ + i] = to[count_ + i - channels_];
  }

  // Rows of windows of w rows become rows of windows of 4 * w where the newest row completes one.
  void widen_windows() {
    for (int64_t w = 1; 4 * w < state_.maskHeight && held_ >= 4 * w; w *= 4) {
      const int64_t newest = held_ - w;
      const T* const rows[] = {ring(newest - 3 * w), ring(newest - 2 * w), ring(newest - w),
                               ring(newest)};
      kernels().of_rows[kWhich](rows, ring(newest - 3 * w), count_);
    }
  }

  // The result whose window begins with the oldest row, which leaves the ring.
  void leave(T* dst) {
    if constexpr (shape == kRectangle)
      rectangle(dst);
    else
      element(dst);
    const int rows = state_.maskHeight;
    std::rotate(state_.rows, state_.rows + 1, state_.rows + rows);
    --held_;
  }

  void rectangle(T* dst) {
    const int64_t height = state_.maskHeight;
    int64_t w = 1;
    while (4 * w < height) w *= 4;
    const bool two = height <= 2 * w;
    const T* const rows[] = {ring(0), ring(two ? height - w : w), ring(two ? 0 : height - 2 * w),
                             ring(height - w)};
    kernels().of_rows[kWhich](rows, dst, count_);
  }

  void element(T* dst) {
    T* spare = reinterpret_cast<T*>(state_.spareRows);
    if (shape == kCross) {
      std::memcpy(spare, ring(state_.anchorY), ring_bytes());
      kernels().along_row[kWhich](spare, count_, channels_, state_.maskWidth);
    }
    const MorphJob<T> job = {.rows = state_.rows,
                             .dst = dst,
                             .count = count_,
                             .channels = channels_,
                             .element = {state_.maskWidth, state_.maskHeight},
                             .anchor = {state_.anchorX, state_.anchorY},
                             .inside = state_.inside,
                             .spare = spare};
    (shape == kCross ? kernels().cross : kernels().mask)[kWhich](job);
  }

  static const MorphKernelsOf<T>& kernels() { return strip_kernels().template of_type<T>(); }

  const StripCall<T>& call_;
  MorphState& state_;
  Stripe stripe_;
  int64_t channels_, count_, around_;
  int held_;
};

template <Extremum extremum, Shape shape, int channels, class T>
StatusCode strip(const StripCall<T>& call) {
  if (const StatusCode status = check(call, shape, channels)) return status;
  Strip<extremum, shape, T>(call).run();
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
