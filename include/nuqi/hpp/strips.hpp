/// Filters that keep a state: sums over boxes, Sobel's derivatives of any order, Laplace's.
#ifndef NUQI_HPP_STRIPS_HPP
#define NUQI_HPP_STRIPS_HPP

#include <nuqi/hpp/overloads.hpp>
#include <nuqi/hpp/strip_filter.hpp>

#include <cstdint>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

namespace nuqi {
namespace detail {

inline constexpr auto kBoxSum =
    overloads(fn<std::uint8_t, 1>(nuqiBlur_8u16s_C1R), fn<std::int8_t, 1>(nuqiBlur_8s16s_C1R),
              fn<float, 1>(nuqiBlur_32f_C1R));
inline constexpr auto kSobel =
    overloads(fn<std::uint8_t, 1>(nuqiSobel_8u16s_C1R), fn<std::int8_t, 1>(nuqiSobel_8s16s_C1R),
              fn<float, 1>(nuqiSobel_32f_C1R));
inline constexpr auto kLaplace =
    overloads(fn<std::uint8_t, 1>(nuqiLaplace_8u16s_C1R), fn<std::int8_t, 1>(nuqiLaplace_8s16s_C1R),
              fn<float, 1>(nuqiLaplace_32f_C1R));

/// What filters of elements T give.
template <class T>
using Filtered = std::conditional_t<std::is_same_v<T, float>, float, std::int16_t>;

/// What BoxSum, Sobel and Laplace share. `kTable` are the C functions.
template <class Filter, const auto& kTable>
class ConvolFilter : public StripFilter<Filter, ConvolState> {
 public:
  /// A whole image: uint8_t or int8_t to int16_t, float to float, of one size, that do not overlap. Throws
  /// Error.
  template <class Source, class Output>
  void operator()(const Source& src, Output&& dst) {
    require(this->template run<Output>(src, dst), name(), src, dst);
  }
  template <class Source, class Output>
  [[nodiscard]] StatusCode operator()(const Source& src, Output&& dst,
                                      std::nothrow_t /*tag*/) noexcept {
    return this->template run<Output>(src, dst).status;
  }

 protected:
  ConvolFilter(StateKey::Kind kind, int size, int x_order = 0, int y_order = 0)
      : size_(size), x_order_(x_order), y_order_(y_order) {
    key_.kind = kind;
    key_.numbers = {size, x_order, y_order};
    if (size != 3 && size != 5 && size != 7) {
      throw Error(StatusBadSize, name(), std::to_string(size), "the size is not 3, 5 or 7");
    }
  }

  StateKey key_;
  int size_, x_order_, y_order_;

 private:
  friend StripFilter<Filter, ConvolState>;

  static const char* name() noexcept { return Filter::kName; }
  const StateKey& key() const noexcept { return key_; }
  /// States for uint8_t serve int8_t.
  template <class T, int C>
  static constexpr std::int32_t kType =
      std::is_same_v<T, float> ? kDataType<float> : kDataType<std::uint8_t>;
  template <class T, int C>
  StatusCode make(std::int32_t width, ConvolState** state) const noexcept {
    return static_cast<const Filter&>(*this).make_state(width, kType<T, C>, state);
  }
  template <class T, class D, int C>
  static constexpr bool kTakes =
      kHolds<T, C, std::remove_const_t<std::remove_reference_t<decltype(kTable)>>>&&
          std::is_same_v<D, Filtered<T>>;
  template <class T, class D, int C>
  static constexpr auto function() noexcept {
    static_assert(
        kTakes<T, D, C>,
        "nuqi: this operation does not exist for these element types and this number of channels");
    return find<T, C>(kTable);
  }
  std::int64_t below() const noexcept { return size_ / 2; }
  std::int64_t least_first() const noexcept { return size_ / 2; }
  static bool alone() noexcept { return false; }
};

}  // namespace detail

/// The sum of the size x size pixels around each pixel; divide by size * size for their mean. Pixels beyond
/// an edge equal the edge pixel. Keep one for all images of a program: it serves every type and width.
///
/// An image comes whole, or in strips of any height:
///
///     BoxSum sums(5);
///     sums(image, result);
///
///     sums.begin();
///     while (read(strip)) write(rows, sums.feed(strip, rows));  // the second is their number
///     write(rows, sums.finish(rows));
class BoxSum : public detail::ConvolFilter<BoxSum, detail::kBoxSum> {
 public:
  /// A size of 3, 5 or 7. Throws Error for others.
  explicit BoxSum(int size = 3) : ConvolFilter(detail::StateKey::blur, size) {}

 private:
  friend ConvolFilter;
  static constexpr const char* kName = "box_sum";

  StatusCode make_state(std::int32_t width, std::int32_t type, ConvolState** state) const noexcept {
    return nuqiBlurInitAlloc(width, type, size_, state);
  }
};

/// Sobel's derivatives: differences of order x_order along x and y_order along y, smoothed to the aperture;
/// first ones are positive where values grow to the right and downwards. int16_t results saturate. Strips as
/// for BoxSum.
class Sobel : public detail::ConvolFilter<Sobel, detail::kSobel> {
 public:
  /// Orders from 0 to aperture - 1, an aperture of 3, 5 or 7. Throws Error for others.
  Sobel(int x_order, int y_order, int aperture = 3)
      : ConvolFilter(detail::StateKey::sobel, aperture, x_order, y_order) {
    if (x_order < 0 || y_order < 0 || x_order >= aperture || y_order >= aperture) {
      throw Error(StatusBadSize, kName,
                  std::to_string(x_order) + ", " + std::to_string(y_order) + ", " +
                      std::to_string(aperture),
                  "an order is below 0 or not below the aperture");
    }
  }

 private:
  friend ConvolFilter;
  static constexpr const char* kName = "sobel";

  StatusCode make_state(std::int32_t width, std::int32_t type, ConvolState** state) const noexcept {
    return nuqiSobelInitAlloc(width, type, size_, 0, x_order_, y_order_, state);
  }
};

/// The second derivatives along x and y, each smoothed across, together: negative on a bright spot. int16_t
/// results of size 7 saturate. Strips as for BoxSum.
class Laplace : public detail::ConvolFilter<Laplace, detail::kLaplace> {
 public:
  /// A size of 3, 5 or 7. Throws Error for others.
  explicit Laplace(int size = 3) : ConvolFilter(detail::StateKey::laplace, size) {}

 private:
  friend ConvolFilter;
  static constexpr const char* kName = "laplace";

  StatusCode make_state(std::int32_t width, std::int32_t type, ConvolState** state) const noexcept {
    return nuqiLaplaceInitAlloc(width, type, size_, state);
  }
};

/// As BoxSum does. Each call fetches a state and gives it back: in a loop keep a BoxSum.
template <class Source, class Output>
void box_sum(const Source& src, Output&& dst, int size = 3) {
  BoxSum{size}(src, std::forward<Output>(dst));
}
template <class Source, class Output>
[[nodiscard]] StatusCode box_sum(const Source& src, Output&& dst, int size,
                                 std::nothrow_t /*tag*/) noexcept {
  return detail::status_of([&] { box_sum(src, std::forward<Output>(dst), size); });
}

/// As Sobel does. Each call fetches a state and gives it back: in a loop keep a Sobel.
template <class Source, class Output>
void sobel(const Source& src, Output&& dst, int x_order, int y_order, int aperture = 3) {
  Sobel{x_order, y_order, aperture}(src, std::forward<Output>(dst));
}
template <class Source, class Output>
[[nodiscard]] StatusCode sobel(const Source& src, Output&& dst, int x_order, int y_order,
                               int aperture, std::nothrow_t /*tag*/) noexcept {
  return detail::status_of(
      [&] { sobel(src, std::forward<Output>(dst), x_order, y_order, aperture); });
}

/// As Laplace does. Each call fetches a state and gives it back: in a loop keep a Laplace.
template <class Source, class Output>
void laplace(const Source& src, Output&& dst, int size = 3) {
  Laplace{size}(src, std::forward<Output>(dst));
}
template <class Source, class Output>
[[nodiscard]] StatusCode laplace(const Source& src, Output&& dst, int size,
                                 std::nothrow_t /*tag*/) noexcept {
  return detail::status_of([&] { laplace(src, std::forward<Output>(dst), size); });
}

}  // namespace nuqi

#endif
