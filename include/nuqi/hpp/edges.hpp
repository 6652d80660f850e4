/// Edges by Canny's method, from derivatives or from a picture.
#ifndef NUQI_HPP_EDGES_HPP
#define NUQI_HPP_EDGES_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/checks.hpp>
#include <nuqi/hpp/derivatives.hpp>
#include <nuqi/hpp/edge_strengths.hpp>
#include <nuqi/hpp/scratch.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace nuqi {
namespace detail {

inline constexpr Outcome kBadThresholds{StatusUnsupported, "low is below 0 or high below low"};

template <class T>
using Plane = View<T, 1>;

/// Rows back to back from `memory` on, which moves on to what follows them.
template <class T>
Plane<T> take_plane(unsigned char*& memory, std::int64_t width, std::int64_t height) noexcept {
  const auto step = static_cast<std::ptrdiff_t>(width) * static_cast<std::ptrdiff_t>(sizeof(T));
  const Plane<T> plane(Plane<T>::unchecked, reinterpret_cast<T*>(memory), width, height, step);
  memory += step * height;
  return plane;
}

/// The bytes that the C function works in, or 0 where the image is too large for it.
inline std::size_t canny_bytes(RoiSize roi) noexcept {
  std::int32_t size = 0;
  return nuqiCannyGetSize(roi, &size) == StatusOk ? static_cast<std::size_t>(size) : 0;
}

/// Both derivatives have one step.
[[gnu::always_inline]] inline Outcome canny_call(Plane<const std::int16_t> dx,
                                                 Plane<const std::int16_t> dy,
                                                 Plane<std::uint8_t> dst, float low, float high,
                                                 void* buffer) noexcept {
  const auto step = static_cast<std::int32_t>(dx.step());
  return nuqiCanny_16s8u_C1R(dx.data(), step, dy.data(), step, dst.data(),
                             static_cast<std::int32_t>(dst.step()), roi_of(dst), low, high, buffer);
}

/// The C function walks each of the two derivatives by the other's step: where the steps differ both are copied
/// to rows back to back.
template <class Output, class Dx, class Dy>
[[gnu::noinline, gnu::cold]] Outcome canny_from_slowly(const Dx& of_x, const Dy& of_y,
                                                       std::remove_reference_t<Output>& to,
                                                       float low, float high,
                                                       Scratch& scratch) noexcept {
  const Plane<const std::int16_t> dx = as_input(of_x), dy = as_input(of_y);
  const Plane<std::uint8_t> dst = as_output<Output>(to);
  if (const Outcome bad = check_whole_slowly<Output>(to, of_x, of_y); bad.failed()) return bad;
  if (!(low >= 0) || !(high >= low)) return kBadThresholds;
  const std::size_t buffer = canny_bytes(roi_of(dst));
  if (buffer == 0) return kNoScratch;
  const auto plane =
      static_cast<std::size_t>(dx.row_bytes()) * static_cast<std::size_t>(dx.height());
  auto* memory = static_cast<unsigned char*>(scratch.get(2 * plane + buffer));
  if (memory == nullptr) return kNoScratch;
  const auto copy = [&](Plane<const std::int16_t> from) {
    const Plane<std::int16_t> copied =
        take_plane<std::int16_t>(memory, from.width(), from.height());
    for (std::int64_t y = 0; y < from.height(); ++y) {
      std::memcpy(copied.row(y), from.row(y), static_cast<std::size_t>(from.row_bytes()));
    }
    return copied;
  };
  const Plane<const std::int16_t> dx_copy = copy(dx);
  const Plane<const std::int16_t> dy_copy = copy(dy);
  return canny_call(dx_copy, dy_copy, dst, low, high, memory);
}

template <class Output, class Dx, class Dy>
[[gnu::always_inline]] inline Outcome canny_from(const Dx& of_x, const Dy& of_y,
                                                 std::remove_reference_t<Output>& to, float low,
                                                 float high, Scratch& scratch) noexcept {
  expect_output<std::int16_t, 1, const Dx, const Dy>();
  expect_output<std::uint8_t, 1, std::remove_reference_t<Output>>();
  const auto dx = as_input(of_x), dy = as_input(of_y);
  const auto dst = as_output<Output>(to);
  if (ready(dst, dx, dy) && lies<Where::apart>(dst, dx, dy) && dx.step() == dy.step()) {
    const RoiSize roi = roi_of(dst);
    void* const buffer =
        scratch.get_for({reinterpret_cast<void (*)()>(canny_bytes), size_key(dst), 0},
                        [=] { return canny_bytes(roi); });
    if (buffer != nullptr) return canny_call(dx, dy, dst, low, high, buffer);
  }
  return canny_from_slowly<Output>(of_x, of_y, to, low, high, scratch);
}

/// Derivatives of a picture in scratch memory, and what follows them there.
struct DerivativesOfPicture {
  Outcome outcome;
  Plane<std::int16_t> dx{}, dy{};
  unsigned char* rest = nullptr;
};

/// `more` bytes are left behind the derivatives. An image of one row counts as two equal rows, which have the
/// same derivatives: the C functions ask for two.
template <class T>
DerivativesOfPicture derivatives_of(Plane<const T> src, EdgeOperator edge_operator,
                                    std::size_t more, Scratch& scratch) noexcept {
  static_assert(std::is_same_v<T, std::uint8_t> || std::is_same_v<T, std::int8_t>,
                "nuqi: edges are found in images of one channel of uint8_t or int8_t");
  const std::int64_t width = src.width(), height = src.height() == 1 ? 2 : src.height();
  const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  auto* memory = static_cast<unsigned char*>(scratch.get(5 * pixels + more));
  if (memory == nullptr) return {kNoScratch};
  DerivativesOfPicture found;
  found.dx = take_plane<std::int16_t>(memory, width, height);
  found.dy = take_plane<std::int16_t>(memory, width, height);
  Plane<const T> taken = src;
  if (src.height() == 1) {
    const Plane<T> twice = take_plane<T>(memory, width, 2);
    for (std::int64_t y = 0; y < 2; ++y)
      std::memcpy(twice.row(y), src.data(), static_cast<std::size_t>(width));
    taken = twice;
  }
  found.rest = memory;
  const auto derive = [&](auto which, Plane<std::int16_t>& to) {
    constexpr auto kOrder = RowOrder::top_down;
    return edge_operator == EdgeOperator::sobel
               ? detail::derive<OfSobel, Plane<std::int16_t>&>(which, taken, to, kOrder)
               : detail::derive<OfScharr, Plane<std::int16_t>&>(which, taken, to, kOrder, 0);
  };
  found.outcome = derive(Derivative::dx, found.dx);
  if (!found.outcome.failed()) found.outcome = derive(Derivative::dy, found.dy);
  return found;
}

template <class T>
Outcome canny(Plane<const T> src, Plane<std::uint8_t> dst, float low, float high,
              EdgeOperator edge_operator, Scratch& scratch) noexcept {
  Outcome outcome = check_sizes(src, dst);
  if (outcome.failed()) return outcome;
  outcome = check_apart(dst, src);
  if (outcome.failed()) return outcome;
  if (!(low >= 0) || !(high >= low)) return kBadThresholds;
  if (!fits(src, dst)) return kTooLarge;
  const std::size_t buffer = canny_bytes(roi_of(dst));
  if (buffer == 0) return kNoScratch;
  const DerivativesOfPicture of = derivatives_of(src, edge_operator, buffer, scratch);
  if (of.outcome.failed()) return of.outcome;
  for (std::int64_t y = 0; y < src.height(); ++y)
    break_ties(of.dx.row(y), of.dy.row(y), src.width(), y);
  return canny_call(of.dx, of.dy, dst, threshold_of_unequal(low), threshold_of_unequal(high),
                    of.rest);
}

struct StrengthsOfPicture {
  Outcome outcome;
  Strengths counts{};
};

template <class T>
StrengthsOfPicture strengths_of(Plane<const T> src, EdgeOperator edge_operator,
                                Scratch& scratch) noexcept {
  if (src.empty()) return {kEmpty};
  if (!fits(src)) return {kTooLarge};
  if (canny_bytes(roi_of(src)) == 0) return {kNoScratch};
  const DerivativesOfPicture of = derivatives_of(src, edge_operator, 0, scratch);
  if (of.outcome.failed()) return {of.outcome};
  StrengthsOfPicture found;
  for (std::int64_t y = 0; y < src.height(); ++y) {
    count_strengths(of.dx.row(y), of.dy.row(y), src.width(), found.counts);
  }
  return found;
}

}  // namespace detail

/// Canny's edges of a pair of derivative images, as the C function finds them: 255 on edges, 0 elsewhere.
/// dx, dy: int16_t; dst: uint8_t, all of one size, dst apart from both. Thresholds 0 <= low <= high are
/// truncated. Neighbours across an edge that are equally strong suppress each other: see canny(). Throws Error.
template <class Dx, class Dy, class Output>
void canny_from(const Dx& dx, const Dy& dy, Output&& dst, float low, float high, Scratch& scratch) {
  detail::require(detail::canny_from<Output>(dx, dy, dst, low, high, scratch), "canny_from", dx, dy,
                  dst, low, high);
}
template <class Dx, class Dy, class Output>
[[nodiscard]] StatusCode canny_from(const Dx& dx, const Dy& dy, Output&& dst, float low, float high,
                                    Scratch& scratch, std::nothrow_t /*tag*/) noexcept {
  return detail::canny_from<Output>(dx, dy, dst, low, high, scratch).status;
}
template <class Dx, class Dy, class Output>
void canny_from(const Dx& dx, const Dy& dy, Output&& dst, float low, float high) {
  Scratch scratch;
  canny_from(dx, dy, std::forward<Output>(dst), low, high, scratch);
}
template <class Dx, class Dy, class Output>
[[nodiscard]] StatusCode canny_from(const Dx& dx, const Dy& dy, Output&& dst, float low, float high,
                                    std::nothrow_t tag) noexcept {
  Scratch scratch;
  return canny_from(dx, dy, std::forward<Output>(dst), low, high, scratch, tag);
}

/// The edges of a picture: 255 on edges, 0 elsewhere. A pixel's strength is |dx| + |dy|; the strongest along
/// its gradient start an edge where they are above `high`, and continue one where they are above `low`. Of
/// neighbours that are equally strong, as on both sides of a sharp step, one is taken for the stronger, so
/// that a white square on black has an outline; where canny_from() finds an edge, so does this. src: uint8_t or
/// int8_t; dst: uint8_t of the same size, apart from it. Throws Error.
template <class Source, class Output>
void canny(const Source& src, Output&& dst, float low, float high, EdgeOperator edge_operator,
           Scratch& scratch) {
  detail::require(detail::canny(detail::as_input(src), detail::as_output<Output>(dst), low, high,
                                edge_operator, scratch),
                  "canny", src, dst, low, high);
}
template <class Source, class Output>
[[nodiscard]] StatusCode canny(const Source& src, Output&& dst, float low, float high,
                               EdgeOperator edge_operator, Scratch& scratch,
                               std::nothrow_t /*tag*/) noexcept {
  return detail::canny(detail::as_input(src), detail::as_output<Output>(dst), low, high,
                       edge_operator, scratch)
      .status;
}
template <class Source, class Output>
void canny(const Source& src, Output&& dst, float low, float high,
           EdgeOperator edge_operator = EdgeOperator::sobel) {
  Scratch scratch;
  canny(src, std::forward<Output>(dst), low, high, edge_operator, scratch);
}
template <class Source, class Output>
[[nodiscard]] StatusCode canny(const Source& src, Output&& dst, float low, float high,
                               EdgeOperator edge_operator, std::nothrow_t tag) noexcept {
  Scratch scratch;
  return canny(src, std::forward<Output>(dst), low, high, edge_operator, scratch, tag);
}

/// Thresholds from the picture itself: of the pixels that have any strength, `share`, 0 to 1, exceed `high` and 2.5
/// times as many `low`, or all. Both are 0 for a flat picture. Throws Error.
template <class Source>
[[nodiscard]] CannyThresholds canny_thresholds(const Source& src, EdgeOperator edge_operator,
                                               double share, Scratch& scratch) {
  const detail::StrengthsOfPicture of =
      detail::strengths_of(detail::as_input(src), edge_operator, scratch);
  detail::require(of.outcome, "canny_thresholds", src);
  return detail::thresholds_of(of.counts, share);
}
template <class Source>
[[nodiscard]] CannyThresholds canny_thresholds(const Source& src,
                                               EdgeOperator edge_operator = EdgeOperator::sobel,
                                               double share = 0.1) {
  Scratch scratch;
  return canny_thresholds(src, edge_operator, share, scratch);
}

/// The edges of a picture with thresholds from the picture itself. Returns them.
template <class Source, class Output>
CannyThresholds canny(const Source& src, Output&& dst, EdgeOperator edge_operator,
                      Scratch& scratch) {
  const CannyThresholds found = canny_thresholds(src, edge_operator, 0.1, scratch);
  canny(src, std::forward<Output>(dst), found.low, found.high, edge_operator, scratch);
  return found;
}
template <class Source, class Output>
CannyThresholds canny(const Source& src, Output&& dst,
                      EdgeOperator edge_operator = EdgeOperator::sobel) {
  Scratch scratch;
  return canny(src, std::forward<Output>(dst), edge_operator, scratch);
}

}  // namespace nuqi

#endif
