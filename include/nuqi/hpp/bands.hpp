/// Images beyond what one C call takes: they are cut into bands of rows, and rows into pieces where need be.
#ifndef NUQI_HPP_BANDS_HPP
#define NUQI_HPP_BANDS_HPP

#include <nuqi/hpp/checks.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <tuple>

namespace nuqi::detail {

/// What C holds in an int32_t: sizes, and steps in bytes.
inline constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();

/// A pointer and a step as C functions take them.
template <class T>
struct Part {
  T* data;
  std::int32_t step;
};

/// The whole of a view that fits (see fits()).
template <class T, int Channels>
constexpr Part<T> whole(const View<T, Channels>& view) noexcept {
  return {view.data(), static_cast<std::int32_t>(view.step())};
}
template <class AnyView>
constexpr RoiSize roi_of(const AnyView& view) noexcept {
  return {static_cast<std::int32_t>(view.width()), static_cast<std::int32_t>(view.height())};
}

/// Whether C functions can take the views whole: their sizes and steps are 31-bit numbers.
template <class... Views>
constexpr bool fits(const Views&... views) noexcept {
  return ((views.width() <= kMost && views.height() <= kMost && views.step() <= kMost) && ...);
}

/// A piece of a view from pixel (x, y) on, as large as the ROI.
template <class T, int Channels>
Part<T> piece(const View<T, Channels>& view, std::int64_t x, std::int64_t y, RoiSize roi) noexcept {
  constexpr auto kPixel = static_cast<std::ptrdiff_t>(sizeof(T)) * Channels;
  auto* first = reinterpret_cast<typename View<T, Channels>::Byte*>(view.data()) +
                static_cast<std::ptrdiff_t>(y) * view.step() +
                static_cast<std::ptrdiff_t>(x) * kPixel;
  const std::ptrdiff_t step = roi.height > 1 ? view.step() : roi.width * kPixel;
  return {reinterpret_cast<T*>(first), static_cast<std::int32_t>(step)};
}

/// The widest piece of a row that C takes of a view.
template <class T, int Channels>
constexpr std::int64_t widest(const View<T, Channels>& /*view*/) noexcept {
  return kMost / (static_cast<std::int64_t>(sizeof(T)) * Channels);
}

template <class Call, class First, class... Others>
Outcome cut_into_bands(std::int64_t pixels, Call& call, const First& first,
                       const Others&... others) {
  const std::int64_t columns = std::min({first.width(), pixels, widest(first), widest(others)...});
  const bool steps_fit = first.step() <= kMost && ((others.step() <= kMost) && ...);
  const std::int64_t rows =
      steps_fit ? std::min(kMost, std::max<std::int64_t>(1, pixels / columns)) : 1;
  for (std::int64_t y = 0; y < first.height(); y += rows) {
    for (std::int64_t x = 0; x < first.width(); x += columns) {
      const RoiSize roi = {static_cast<std::int32_t>(std::min(columns, first.width() - x)),
                           static_cast<std::int32_t>(std::min(rows, first.height() - y))};
      const Outcome outcome = call(roi, piece(first, x, y, roi), piece(others, x, y, roi)...);
      if (outcome.failed()) return outcome;
    }
  }
  return {};
}

/// Calls call(RoiSize, Part...) for bands that together are the views, which have one size: whole rows from top
/// to bottom, or pieces of rows from left to right where rows are longer than a band. A band has at most
/// `pixels` pixels. The call returns an Outcome or a status; a failure ends the work.
template <class Call, class First, class... Others>
Outcome in_bands(std::int64_t pixels, Call&& call, const First& first, const Others&... others) {
  if (fits(first, others...) && first.size() <= pixels) {
    return call(roi_of(first), whole(first), whole(others)...);
  }
  return cut_into_bands(pixels, call, first, others...);
}

/// Calls a C function with pointer and step of each part, the ROI, and further values: the order of arguments
/// that most have.
template <class Function, class... Values>
auto flat(Function* function, Values... values) noexcept {
  return [=](RoiSize roi, auto... parts) {
    return std::apply(function, std::tuple_cat(std::make_tuple(parts.data, parts.step)...,
                                               std::make_tuple(roi, values...)));
  };
}

/// For operations on single pixels: bands as large as C takes them.
template <class Call, class First, class... Others>
Outcome per_pixel(Call&& call, const First& first, const Others&... others) {
  return in_bands(std::numeric_limits<std::int64_t>::max(), call, first, others...);
}

}  // namespace nuqi::detail

#endif
