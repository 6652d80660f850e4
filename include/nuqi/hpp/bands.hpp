/// Images beyond what one C call takes: they are cut into bands of rows, and rows into pieces where need be.
#ifndef NUQI_HPP_BANDS_HPP
#define NUQI_HPP_BANDS_HPP

#include <nuqi/hpp/checks.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <tuple>
#include <type_traits>

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
constexpr Part<T> whole(View<T, Channels> view) noexcept {
  return {view.data(), static_cast<std::int32_t>(view.step())};
}
/// A size as a number, for a ScratchKey.
template <class AnyView>
[[gnu::always_inline]] inline std::uint64_t size_key(AnyView view) noexcept {
  return static_cast<std::uint64_t>(view.height()) << 32 | static_cast<std::uint32_t>(view.width());
}

template <class AnyView>
[[gnu::always_inline]] inline RoiSize roi_of(AnyView view) noexcept {
  RoiSize roi = {static_cast<std::int32_t>(view.width()), static_cast<std::int32_t>(view.height())};
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  // GCC 12 stores the halves and loads the whole, which waits for both: three nanoseconds a call.
  const std::uint64_t both = size_key(view);
  std::memcpy(&roi, &both, sizeof roi);
#endif
  return roi;
}

/// Whether C functions can take the views whole: their sizes and steps are 31-bit numbers.
template <class... Views>
constexpr bool fits(Views... views) noexcept {
  return ((views.width() | views.height() | std::int64_t{views.step()}) | ...) <=
         kMost;  // none is negative
}

/// A piece of a view from pixel (x, y) on, as large as the ROI.
template <class T, int Channels>
Part<T> piece(View<T, Channels> view, std::int64_t x, std::int64_t y, RoiSize roi) noexcept {
  constexpr auto kPixel = static_cast<std::ptrdiff_t>(sizeof(T)) * Channels;
  auto* first = reinterpret_cast<typename View<T, Channels>::Byte*>(view.data()) +
                static_cast<std::ptrdiff_t>(y) * view.step() +
                static_cast<std::ptrdiff_t>(x) * kPixel;
  const std::ptrdiff_t step = roi.height > 1 ? view.step() : roi.width * kPixel;
  return {reinterpret_cast<T*>(first), static_cast<std::int32_t>(step)};
}

/// The widest piece of a row that C takes of a view.
template <class T, int Channels>
constexpr std::int64_t widest(View<T, Channels> /*view*/) noexcept {
  return kMost / (static_cast<std::int64_t>(sizeof(T)) * Channels);
}

template <class Call, class First, class... Others>
[[gnu::noinline, gnu::cold]] Outcome cut_into_bands(std::int64_t pixels, Call call, First first,
                                                    Others... others) {
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
[[gnu::always_inline]] inline Outcome in_bands(std::int64_t pixels, Call call, First first,
                                               Others... others) {
  if (fits(first, others...) && first.width() * first.height() <= pixels) {
    return call(roi_of(first), whole(first), whole(others)...);
  }
  return cut_into_bands(pixels, call, first, others...);
}
/// Bands as large as C takes them.
inline constexpr std::int64_t kUnlimited = std::numeric_limits<std::int64_t>::max();

// ---- The common case

/// One size, not empty, and C can take the views whole: one comparison.
template <class First, class... Others>
[[gnu::always_inline]] inline bool ready(First first, Others... others) noexcept {
  const std::int64_t width = first.width(), height = first.height();
  const std::int64_t differences =
      ((width ^ others.width()) | ... | 0) | ((height ^ others.height()) | ... | 0);
  // One less than nothing is negative: no number of 31 bits.
  const std::int64_t numbers = width | (width - 1) | height | (height - 1) |
                               std::int64_t{first.step()} | (std::int64_t{others.step()} | ... | 0);
  return (differences | (numbers >> 31)) == 0;
}

/// The view of an input, be it a mask.
template <class AnyImage>
[[gnu::always_inline]] inline auto input(const AnyImage& image) noexcept {
  if constexpr (std::is_same_v<AnyImage, Mask>) {
    return image.view();
  } else {
    return as_input(image);
  }
}

/// Where an output may lie.
enum class Where { apart, in_place };

/// Whether it certainly does. The views have one size.
template <Where kWhere, class Output, class... Inputs>
[[gnu::always_inline]] inline bool lies(Output out, Inputs... inputs) noexcept {
  const auto lies_so = [&](auto input) {
    if (far_apart(out, input)) return true;
    return kWhere == Where::in_place && static_cast<const void*>(out.data()) == input.data() &&
           out.step() == input.step();
  };
  return (lies_so(inputs) && ...);
}

/// All else: regions of one picture, what is wrong, what is cut into bands.
template <Where kWhere, class Dst, class Call, class... Inputs>
[[gnu::noinline]] Outcome write_slowly(Call call, std::remove_reference_t<Dst>& dst,
                                       const Inputs&... inputs) {
  const auto out = as_output<Dst>(dst);
  if (ready(out, input(inputs)...) && (side_by_side(out, input(inputs)) && ...)) {
    return call(roi_of(out), whole(input(inputs))..., whole(out));
  }
  if (const Outcome bad = check_sizes(out, input(inputs)...); bad.failed()) return bad;
  const Outcome bad = kWhere == Where::apart ? check_apart(out, input(inputs)...)
                                             : check_in_place(out, input(inputs)...);
  return bad.failed() ? bad : in_bands(kUnlimited, call, input(inputs)..., out);
}

/// Runs an operation on single pixels: checks the images, calls call(RoiSize, Part of each input..., Part of dst).
/// What is not the common case goes elsewhere, and gets the images as they came: nothing is kept for it here.
template <Where kWhere, class Dst, class Call, class... Inputs>
[[gnu::always_inline]] inline Outcome write(Call call, std::remove_reference_t<Dst>& dst,
                                            const Inputs&... inputs) {
  const auto out = as_output<Dst>(dst);
  if (ready(out, input(inputs)...) && lies<kWhere>(out, input(inputs)...)) {
    return call(roi_of(out), whole(input(inputs))..., whole(out));
  }
  return write_slowly<kWhere, Dst>(call, dst, inputs...);
}

template <class Dst, class... Inputs>
[[gnu::noinline, gnu::cold]] Outcome check_whole_slowly(std::remove_reference_t<Dst>& dst,
                                                        const Inputs&... inputs) noexcept {
  const auto out = as_output<Dst>(dst);
  if (const Outcome bad = check_sizes(out, input(inputs)...); bad.failed()) return bad;
  return fits(out, input(inputs)...) ? check_apart(out, input(inputs)...) : kTooLarge;
}
/// The checks of an operation that takes images of one size, as a whole only, and writes apart from them.
template <class Dst, class... Inputs>
[[gnu::always_inline]] inline Outcome check_whole(std::remove_reference_t<Dst>& dst,
                                                  const Inputs&... inputs) noexcept {
  const auto out = as_output<Dst>(dst);
  if (ready(out, input(inputs)...) && lies<Where::apart>(out, input(inputs)...)) return {};
  return check_whole_slowly<Dst>(dst, inputs...);
}

/// Calls a C function with pointer and step of each part, the ROI, and further values: the order of arguments
/// that most have.
template <class Function, class... Values>
struct Flat {
  Function* function;
  std::tuple<Values...> values;

  template <class... Parts>
  [[gnu::always_inline]] StatusCode operator()(RoiSize roi, Parts... parts) const noexcept {
    return std::apply(function, std::tuple_cat(std::make_tuple(parts.data, parts.step)...,
                                               std::make_tuple(roi), values));
  }
};
template <class Function, class... Values>
[[gnu::always_inline]] inline Flat<Function, Values...> flat(Function* function,
                                                             Values... values) noexcept {
  return {function, {values...}};
}

}  // namespace nuqi::detail

#endif
