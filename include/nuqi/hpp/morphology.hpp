/// Erosion and dilation: the least and greatest pixels around each pixel.
#ifndef NUQI_HPP_MORPHOLOGY_HPP
#define NUQI_HPP_MORPHOLOGY_HPP

#include <nuqi/hpp/element.hpp>
#include <nuqi/hpp/overloads.hpp>
#include <nuqi/hpp/strip_filter.hpp>

#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

namespace nuqi {

/// What a Morphology does with the pixels under its element.
enum class Extremum {
  least,    ///< of an erosion
  greatest  ///< of a dilation
};

namespace detail {

// clang-format off
inline constexpr auto kErodeRectangle = overloads(
    fn<std::uint8_t, 1>(nuqiErodeStrip_Rect_8u_C1R),
    fn<std::uint8_t, 3>(nuqiErodeStrip_Rect_8u_C3R),
    fn<std::uint8_t, 4>(nuqiErodeStrip_Rect_8u_C4R),
    fn<float, 1>(nuqiErodeStrip_Rect_32f_C1R),
    fn<float, 3>(nuqiErodeStrip_Rect_32f_C3R),
    fn<float, 4>(nuqiErodeStrip_Rect_32f_C4R));
inline constexpr auto kErodeCross = overloads(
    fn<std::uint8_t, 1>(nuqiErodeStrip_Cross_8u_C1R),
    fn<std::uint8_t, 3>(nuqiErodeStrip_Cross_8u_C3R),
    fn<std::uint8_t, 4>(nuqiErodeStrip_Cross_8u_C4R),
    fn<float, 1>(nuqiErodeStrip_Cross_32f_C1R),
    fn<float, 3>(nuqiErodeStrip_Cross_32f_C3R),
    fn<float, 4>(nuqiErodeStrip_Cross_32f_C4R));
inline constexpr auto kErode = overloads(
    fn<std::uint8_t, 1>(nuqiErodeStrip_8u_C1R),
    fn<std::uint8_t, 3>(nuqiErodeStrip_8u_C3R),
    fn<std::uint8_t, 4>(nuqiErodeStrip_8u_C4R),
    fn<float, 1>(nuqiErodeStrip_32f_C1R),
    fn<float, 3>(nuqiErodeStrip_32f_C3R),
    fn<float, 4>(nuqiErodeStrip_32f_C4R));
inline constexpr auto kDilateRectangle = overloads(
    fn<std::uint8_t, 1>(nuqiDilateStrip_Rect_8u_C1R),
    fn<std::uint8_t, 3>(nuqiDilateStrip_Rect_8u_C3R),
    fn<std::uint8_t, 4>(nuqiDilateStrip_Rect_8u_C4R),
    fn<float, 1>(nuqiDilateStrip_Rect_32f_C1R),
    fn<float, 3>(nuqiDilateStrip_Rect_32f_C3R),
    fn<float, 4>(nuqiDilateStrip_Rect_32f_C4R));
inline constexpr auto kDilateCross = overloads(
    fn<std::uint8_t, 1>(nuqiDilateStrip_Cross_8u_C1R),
    fn<std::uint8_t, 3>(nuqiDilateStrip_Cross_8u_C3R),
    fn<std::uint8_t, 4>(nuqiDilateStrip_Cross_8u_C4R),
    fn<float, 1>(nuqiDilateStrip_Cross_32f_C1R),
    fn<float, 3>(nuqiDilateStrip_Cross_32f_C3R),
    fn<float, 4>(nuqiDilateStrip_Cross_32f_C4R));
inline constexpr auto kDilate = overloads(
    fn<std::uint8_t, 1>(nuqiDilateStrip_8u_C1R),
    fn<std::uint8_t, 3>(nuqiDilateStrip_8u_C3R),
    fn<std::uint8_t, 4>(nuqiDilateStrip_8u_C4R),
    fn<float, 1>(nuqiDilateStrip_32f_C1R),
    fn<float, 3>(nuqiDilateStrip_32f_C3R),
    fn<float, 4>(nuqiDilateStrip_32f_C4R));
// clang-format on

}  // namespace detail

/// Erosions and dilations with one element, whole images or strips of them as with BoxSum:
///
///     Morphology disc(Element::ellipse(9, 9));
///     disc.erode(image, result);
///
///     disc.begin(Extremum::least);
///     while (read(strip)) write(rows, disc.feed(strip, rows));  // the second is their number
///     write(rows, disc.finish(rows));
///
/// Pixels beyond an edge equal the edge pixel; channels are processed each on its own. Images of uint8_t or
/// float with one, three or four channels. Keep one for all images of a program. The states behind these
/// objects are kept until the program ends, for others of the same element, type, channels and width rounded
/// up to a power of two: every other arbitrary element costs its block of memory.
class Morphology : public detail::StripFilter<Morphology, MorphState> {
 public:
  explicit Morphology(Element element) : element_(std::move(element)) {
    key_.kind = detail::StateKey::morphology;
    key_.numbers = {element_.shape(), element_.size().width, element_.size().height,
                    element_.anchor().x, element_.anchor().y};
    key_.mask = element_.mask();
  }
  [[nodiscard]] const Element& element() const noexcept { return element_; }

  /// The least of the pixels that the element covers. Images of one size that do not overlap. Throws Error.
  template <class Source, class Output>
  void erode(const Source& src, Output&& dst) {
    apply<Output>(Extremum::least, src, dst);
  }
  template <class Source, class Output>
  [[nodiscard]] StatusCode erode(const Source& src, Output&& dst, std::nothrow_t /*tag*/) noexcept {
    extremum_ = Extremum::least;
    return run<Output>(src, dst).status;
  }
  /// The greatest of them. The element is not reflected: see Element::turned.
  template <class Source, class Output>
  void dilate(const Source& src, Output&& dst) {
    apply<Output>(Extremum::greatest, src, dst);
  }
  template <class Source, class Output>
  [[nodiscard]] StatusCode dilate(const Source& src, Output&& dst,
                                  std::nothrow_t /*tag*/) noexcept {
    extremum_ = Extremum::greatest;
    return run<Output>(src, dst).status;
  }

  /// Begins an image that comes in strips. Another that is not finished is given up.
  void begin(Extremum extremum) noexcept {
    extremum_ = extremum;
    StripFilter::begin();
  }

 private:
  friend StripFilter;

  template <class Output, class Source>
  void apply(Extremum extremum, const Source& src, std::remove_reference_t<Output>& dst) {
    extremum_ = extremum;
    detail::require(run<Output>(src, dst), name(), src, dst);
  }

  const char* name() const noexcept { return extremum_ == Extremum::least ? "erode" : "dilate"; }
  const detail::StateKey& key() const noexcept { return key_; }
  template <class T, int C>
  static constexpr std::int32_t kType = 16 * detail::kDataType<T> + C;
  template <class T, class D, int C>
  static constexpr bool kTakes =
      detail::kHolds<T, C, std::remove_const_t<decltype(detail::kErode)>>&& std::is_same_v<T, D>;

  template <class T, class D, int C>
  auto function() const noexcept {
    static_assert(
        kTakes<T, D, C>,
        "nuqi: this operation does not exist for these element types and this number of channels");
    const bool erodes = extremum_ == Extremum::least;
    switch (element_.shape()) {
      case 0:
        return erodes ? detail::find<T, C>(detail::kErodeRectangle)
                      : detail::find<T, C>(detail::kDilateRectangle);
      case 1:
        return erodes ? detail::find<T, C>(detail::kErodeCross)
                      : detail::find<T, C>(detail::kDilateCross);
      default:
        return erodes ? detail::find<T, C>(detail::kErode) : detail::find<T, C>(detail::kDilate);
    }
  }
  template <class T, int C>
  StatusCode make(std::int32_t width, MorphState** state) const noexcept {
    const std::int32_t* mask = element_.mask().empty() ? nullptr : element_.mask().data();
    return nuqiMorphologyInitAlloc(width, detail::kDataType<T>, C, element_.size(),
                                   element_.anchor(), element_.shape(), mask, state);
  }
  std::int64_t below() const noexcept { return element_.size().height - 1 - element_.anchor().y; }
  static std::int64_t least_first() noexcept { return 0; }
  bool alone() const noexcept { return element_.size().height == 1; }

  Element element_;
  detail::StateKey key_;
  Extremum extremum_ = Extremum::least;
};

/// As Morphology::erode does. Each call fetches a state and gives it back: in a loop keep a Morphology.
template <class Source, class Output>
void erode(const Source& src, Output&& dst, const Element& element) {
  Morphology(element).erode(src, std::forward<Output>(dst));
}
template <class Source, class Output>
[[nodiscard]] StatusCode erode(const Source& src, Output&& dst, const Element& element,
                               std::nothrow_t /*tag*/) noexcept {
  return detail::status_of([&] { erode(src, std::forward<Output>(dst), element); });
}

/// As Morphology::dilate does. Each call fetches a state and gives it back: in a loop keep a Morphology.
template <class Source, class Output>
void dilate(const Source& src, Output&& dst, const Element& element) {
  Morphology(element).dilate(src, std::forward<Output>(dst));
}
template <class Source, class Output>
[[nodiscard]] StatusCode dilate(const Source& src, Output&& dst, const Element& element,
                                std::nothrow_t /*tag*/) noexcept {
  return detail::status_of([&] { dilate(src, std::forward<Output>(dst), element); });
}

}  // namespace nuqi

#endif
