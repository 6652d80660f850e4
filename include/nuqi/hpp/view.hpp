/// Views: rectangles of pixels in anybody's memory.
#ifndef NUQI_HPP_VIEW_HPP
#define NUQI_HPP_VIEW_HPP

#include <nuqi/hpp/error.hpp>

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace nuqi {

/// The number of channels of a view that knows it at run time only.
inline constexpr int kAnyChannels = 0;

namespace detail {

template <class T>
constexpr const char* type_name() noexcept {
  using Element = std::remove_const_t<T>;
  if constexpr (std::is_same_v<Element, std::uint8_t>) return "uint8_t";
  if constexpr (std::is_same_v<Element, std::int8_t>) return "int8_t";
  if constexpr (std::is_same_v<Element, std::int16_t>) return "int16_t";
  if constexpr (std::is_same_v<Element, std::int32_t>) return "int32_t";
  if constexpr (std::is_same_v<Element, float>) return "float";
  return "other elements";
}

inline std::string shape_text(std::int64_t width, std::int64_t height, int channels,
                              const char* type) {
  std::string text = std::to_string(width) + "x" + std::to_string(height) + " of " + type;
  return channels == 1 ? text : text + " x " + std::to_string(channels);
}

/// What is wrong with a shape, or null. One row, or none, may have any step: there is no next row to find.
constexpr const char* fault_of_shape(const void* data, std::int64_t width, std::int64_t height,
                                     int channels, std::size_t element,
                                     std::ptrdiff_t step) noexcept {
  if (width < 0 || height < 0) return "a width or height is negative";
  if (channels < 1 || channels > 1024) return "the number of channels is out of range";
  const auto pixel = static_cast<std::int64_t>(element) * channels;
  if (width > std::numeric_limits<std::ptrdiff_t>::max() / pixel)
    return "a row exceeds the address space";
  if (width == 0 || height == 0) return nullptr;
  if (data == nullptr) return "the pixels' pointer is null";
  if (height == 1) return nullptr;
  if (step < width * pixel) return "the step is below a row's bytes";
  if (step % static_cast<std::ptrdiff_t>(element) != 0)
    return "the step is not a multiple of the element's size";
  if (height > std::numeric_limits<std::ptrdiff_t>::max() / step)
    return "an image exceeds the address space";
  return nullptr;
}

/// Tags of constructors.
struct Unchecked {};
struct Members {};

}  // namespace detail

/// A rectangle of pixels in anybody's memory: a pointer, a width and height in pixels, and the step from the
/// start of one row to the start of the next, in bytes. Owns nothing and is passed by value. View<const T>
/// reads, View<T> also writes and converts to it. A row's pixels are contiguous, the channels of a pixel too.
template <class T, int Channels = 1>
class View {
  static_assert(std::is_arithmetic_v<T>, "nuqi: the elements of a View are numbers");
  static_assert(Channels >= 1, "nuqi: a View has one channel or more, or kAnyChannels");

 public:
  using element = std::remove_const_t<T>;
  using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;

  /// No pixels.
  constexpr View() noexcept = default;

  /// Throws Error if the size is negative, the step below a row's bytes or not a multiple of sizeof(T). A
  /// single row may have any step.
  View(T* data, std::int64_t width, std::int64_t height, std::ptrdiff_t step)
      : View(unchecked, data, width, height, checked_step(data, width, height, step)) {}
  /// Rows that lie back to back.
  View(T* data, std::int64_t width, std::int64_t height)
      : View(data, width, height, back_to_back(width)) {}

  /// What writes may read.
  template <class U, class = std::enable_if_t<std::is_same_v<const U, T> && !std::is_const_v<U>>>
  constexpr View(const View<U, Channels>& other) noexcept  // NOLINT(google-explicit-constructor)
      : data_(other.data()), width_(other.width()), height_(other.height()), step_(other.step()) {}

  /// For shapes that are known to hold.
  static constexpr detail::Unchecked unchecked{};
  constexpr View(detail::Unchecked /*tag*/, T* data, std::int64_t width, std::int64_t height,
                 std::ptrdiff_t step) noexcept
      : View(detail::Members{}, data, width, height,
             height > 1 ? step : static_cast<std::ptrdiff_t>(width) * kPixelBytes) {}
  /// The members as they are.
  constexpr View(detail::Members /*tag*/, T* data, std::int64_t width, std::int64_t height,
                 std::ptrdiff_t step) noexcept
      : data_(data), width_(width), height_(height), step_(step) {}

  [[nodiscard]] constexpr T* data() const noexcept { return data_; }
  [[nodiscard]] constexpr std::int64_t width() const noexcept { return width_; }
  [[nodiscard]] constexpr std::int64_t height() const noexcept { return height_; }
  [[nodiscard]] constexpr std::ptrdiff_t step() const noexcept { return step_; }
  [[nodiscard]] static constexpr int channels() noexcept { return Channels; }
  /// The number of pixels.
  [[nodiscard]] constexpr std::int64_t size() const noexcept { return width_ * height_; }
  [[nodiscard]] constexpr bool empty() const noexcept { return width_ <= 0 || height_ <= 0; }
  [[nodiscard]] constexpr std::ptrdiff_t row_bytes() const noexcept {
    return static_cast<std::ptrdiff_t>(width_) * kPixelBytes;
  }

  /// The first element of row y.
  [[nodiscard]] T* row(std::int64_t y) const noexcept {
    assert(y >= 0 && y < height_);
    return at(0, y);
  }
  [[nodiscard]] T& operator()(std::int64_t x, std::int64_t y, int channel = 0) const noexcept {
    assert(x >= 0 && x < width_ && y >= 0 && y < height_ && channel >= 0 && channel < Channels);
    return at(x, y)[channel];
  }

  /// The part of the given size whose top-left pixel is (x, y). Throws Error if it reaches outside.
  [[nodiscard]] View roi(std::int64_t x, std::int64_t y, std::int64_t width,
                         std::int64_t height) const {
    const bool inside = x >= 0 && y >= 0 && width >= 0 && height >= 0 && x <= width_ &&
                        y <= height_ && width <= width_ - x && height <= height_ - y;
    if (!inside) {
      throw Error(StatusBadArg, "roi",
                  text() + ", " + std::to_string(x) + ", " + std::to_string(y) + ", " +
                      std::to_string(width) + ", " + std::to_string(height),
                  "the rectangle reaches outside the image");
    }
    return View(unchecked, width == 0 || height == 0 ? data_ : at(x, y), width, height, step_);
  }

  /// "64x48 of uint8_t x 3"
  [[nodiscard]] std::string text() const {
    return detail::shape_text(width_, height_, Channels, detail::type_name<T>());
  }

 private:
  static constexpr std::ptrdiff_t kPixelBytes = static_cast<std::ptrdiff_t>(sizeof(T)) * Channels;

  /// Wraps for rows that are refused anyway.
  static std::ptrdiff_t back_to_back(std::int64_t width) noexcept {
    return static_cast<std::ptrdiff_t>(static_cast<std::size_t>(width) *
                                       static_cast<std::size_t>(kPixelBytes));
  }
  /// The step, if the shape is possible: looked at before anything is computed from it.
  static std::ptrdiff_t checked_step(const T* data, std::int64_t width, std::int64_t height,
                                     std::ptrdiff_t step) {
    const char* fault = detail::fault_of_shape(data, width, height, Channels, sizeof(T), step);
    if (fault != nullptr) {
      const std::string shape = detail::shape_text(width, height, Channels, detail::type_name<T>());
      throw Error(StatusBadSize, "View", shape + ", step " + std::to_string(step), fault);
    }
    return step;
  }
  T* at(std::int64_t x, std::int64_t y) const noexcept {
    auto* first = reinterpret_cast<Byte*>(data_) + static_cast<std::ptrdiff_t>(y) * step_;
    return reinterpret_cast<T*>(first + static_cast<std::ptrdiff_t>(x) * kPixelBytes);
  }

  T* data_ = nullptr;
  std::int64_t width_ = 0;
  std::int64_t height_ = 0;
  std::ptrdiff_t step_ = 0;
};

/// A view whose number of channels is known at run time only, as that of a decoded file is. Operations take
/// none: as<3>() asks for the view that they take.
template <class T>
class View<T, kAnyChannels> {
 public:
  using element = std::remove_const_t<T>;

  constexpr View() noexcept = default;
  /// Throws Error as View does, or if there is no channel.
  View(T* data, std::int64_t width, std::int64_t height, int channels, std::ptrdiff_t step)
      : data_(data), width_(width), height_(height), step_(step), channels_(channels) {
    const char* fault = detail::fault_of_shape(data, width, height, channels, sizeof(T), step);
    if (fault != nullptr)
      throw Error(StatusBadSize, "View", text() + ", step " + std::to_string(step), fault);
  }
  template <class U, int Channels,
            class = std::enable_if_t<std::is_convertible_v<U (*)[], T (*)[]>>>
  constexpr View(const View<U, Channels>& other) noexcept  // NOLINT(google-explicit-constructor)
      : data_(other.data()),
        width_(other.width()),
        height_(other.height()),
        step_(other.step()),
        channels_(other.channels()) {}

  [[nodiscard]] constexpr T* data() const noexcept { return data_; }
  [[nodiscard]] constexpr std::int64_t width() const noexcept { return width_; }
  [[nodiscard]] constexpr std::int64_t height() const noexcept { return height_; }
  [[nodiscard]] constexpr std::ptrdiff_t step() const noexcept { return step_; }
  [[nodiscard]] constexpr int channels() const noexcept { return channels_; }
  [[nodiscard]] constexpr bool empty() const noexcept { return width_ <= 0 || height_ <= 0; }

  /// The same pixels as a view of N channels. Throws Error if their number is another.
  template <int N>
  [[nodiscard]] View<T, N> as() const {
    if (channels_ != N) {
      throw Error(StatusBadChannels, "as", text() + ", " + std::to_string(N),
                  "the image has another number of channels");
    }
    return View<T, N>(View<T, N>::unchecked, data_, width_, height_, step_);
  }
  [[nodiscard]] std::string text() const {
    return detail::shape_text(width_, height_, channels_, detail::type_name<T>());
  }

 private:
  T* data_ = nullptr;
  std::int64_t width_ = 0;
  std::int64_t height_ = 0;
  std::ptrdiff_t step_ = 0;
  int channels_ = 1;
};

}  // namespace nuqi

#endif
