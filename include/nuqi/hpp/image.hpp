/// Images that own their pixels, masks, and the way in for the images of others.
#ifndef NUQI_HPP_IMAGE_HPP
#define NUQI_HPP_IMAGE_HPP

#include <nuqi/hpp/view.hpp>

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace nuqi {

/// Asks for pixels that nobody has written: Image<float>(640, 480, nuqi::uninitialised).
struct Uninitialised {};
inline constexpr Uninitialised uninitialised{};

/// An image that owns its pixels. Rows begin at multiples of 64 bytes. Moves; copies by clone() only.
template <class T, int Channels = 1>
class Image {
  static_assert(!std::is_const_v<T>,
                "nuqi: an Image owns its pixels: only Views have const elements");

 public:
  using element = T;

  Image() noexcept = default;
  /// All zeros. Throws Error if a size is negative or there is no such memory.
  Image(std::int64_t width, std::int64_t height) : Image(width, height, uninitialised) {
    if (!empty()) std::memset(view_.data(), 0, bytes());
  }
  Image(std::int64_t width, std::int64_t height, Uninitialised /*pixels*/) {
    allocate(width, height);
  }

  Image(Image&& other) noexcept : view_(std::exchange(other.view_, {})) {}
  Image& operator=(Image&& other) noexcept {
    std::swap(view_, other.view_);
    return *this;
  }
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;
  ~Image() {
    if (view_.data() != nullptr) ::operator delete (view_.data(), std::align_val_t{kAlignment});
  }

  [[nodiscard]] Image clone() const {
    Image copy(width(), height(), uninitialised);
    if (!empty()) std::memcpy(copy.view_.data(), view_.data(), bytes());
    return copy;
  }

  [[nodiscard]] View<T, Channels> view() noexcept {
    return {detail::Members{}, data(), width(), height(), step()};
  }
  [[nodiscard]] View<const T, Channels> view() const noexcept { return view_; }
  operator View<T, Channels>() noexcept { return view_; }  // NOLINT(google-explicit-constructor)
  // NOLINTNEXTLINE(google-explicit-constructor)
  operator View<const T, Channels>() const noexcept { return view_; }

  [[nodiscard]] T* data() noexcept { return view_.data(); }
  [[nodiscard]] const T* data() const noexcept { return view_.data(); }
  [[nodiscard]] std::int64_t width() const noexcept { return view_.width(); }
  [[nodiscard]] std::int64_t height() const noexcept { return view_.height(); }
  [[nodiscard]] std::ptrdiff_t step() const noexcept { return view_.step(); }
  [[nodiscard]] static constexpr int channels() noexcept { return Channels; }
  [[nodiscard]] std::int64_t size() const noexcept { return view_.size(); }
  [[nodiscard]] bool empty() const noexcept { return view_.empty(); }
  [[nodiscard]] T* row(std::int64_t y) noexcept { return view_.row(y); }
  [[nodiscard]] const T* row(std::int64_t y) const noexcept { return view_.row(y); }
  [[nodiscard]] T& operator()(std::int64_t x, std::int64_t y, int channel = 0) noexcept {
    return view_(x, y, channel);
  }
  [[nodiscard]] const T& operator()(std::int64_t x, std::int64_t y,
                                    int channel = 0) const noexcept {
    return view_(x, y, channel);
  }
  [[nodiscard]] View<T, Channels> roi(std::int64_t x, std::int64_t y, std::int64_t width,
                                      std::int64_t height) {
    return view_.roi(x, y, width, height);
  }
  [[nodiscard]] View<const T, Channels> roi(std::int64_t x, std::int64_t y, std::int64_t width,
                                            std::int64_t height) const {
    return view_.roi(x, y, width, height);
  }

 private:
  static constexpr std::size_t kAlignment = 64;

  [[nodiscard]] std::size_t bytes() const noexcept {
    return static_cast<std::size_t>(view_.step()) * static_cast<std::size_t>(view_.height());
  }
  void allocate(std::int64_t width, std::int64_t height) {
    constexpr std::int64_t kLimit = std::numeric_limits<std::ptrdiff_t>::max() - 64;
    constexpr auto kPixel = static_cast<std::int64_t>(sizeof(T)) * Channels;
    const auto refuse = [&](StatusCode status, const char* why) {
      throw Error(status, "Image",
                  detail::shape_text(width, height, Channels, detail::type_name<T>()), why);
    };
    if (width < 0 || height < 0) refuse(StatusBadSize, "a width or height is negative");
    if (width == 0 || height == 0) return;
    if (width > kLimit / kPixel) refuse(StatusNoMemory, "an image exceeds the address space");
    const std::int64_t step = (width * kPixel + 63) / 64 * 64;
    if (height > kLimit / step) refuse(StatusNoMemory, "an image exceeds the address space");
    void* block = ::operator new (static_cast<std::size_t>(step * height),
                                  std::align_val_t{kAlignment}, std::nothrow);
    if (block == nullptr) refuse(StatusNoMemory, "there is not enough memory");
    view_ = View<T, Channels>(View<T, Channels>::unchecked, static_cast<T*>(block), width, height,
                              static_cast<std::ptrdiff_t>(step));
  }

  View<T, Channels> view_;
};

/// Lets operations take the images of another library as they are. Specialise it:
///
///     template <> struct nuqi::ImageTraits<Theirs> {
///       static constexpr int channels = 1;
///       static constexpr bool row_major = true;       // the pixels of a row are contiguous
///       template <class I> static auto* data(I& image) { return image.pixels(); }  // I: Theirs, or const
///       static std::int64_t rows(const Theirs& image) { return image.height(); }
///       static std::int64_t columns(const Theirs& image) { return image.width(); }
///       static std::ptrdiff_t row_stride_bytes(const Theirs& image) { return image.stride(); }
///     };
///
/// data() of a const image must point to const elements.
template <class Foreign>
struct ImageTraits {
  static constexpr bool missing = true;
};

class Mask;

namespace detail {

template <class T>
inline constexpr bool kIsView = false;
template <class T, int Channels>
inline constexpr bool kIsView<View<T, Channels>> = true;
template <class T>
inline constexpr bool kIsImage = false;
template <class T, int Channels>
inline constexpr bool kIsImage<Image<T, Channels>> = true;

/// Member by member: as a block GCC 12 would copy it to memory first, and read it there.
template <class T, int Channels>
[[gnu::always_inline]] inline View<T, Channels> copy_of(const View<T, Channels>& view) noexcept {
  return {Members{}, view.data(), view.width(), view.height(), view.step()};
}
template <class T>
[[gnu::always_inline]] inline View<T, kAnyChannels> copy_of(View<T, kAnyChannels> view) noexcept {
  return view;
}

template <class Traits, class = void>
inline constexpr bool kIsForeign = true;
template <class Traits>
inline constexpr bool kIsForeign<Traits, std::enable_if_t<Traits::missing>> = false;

template <class Foreign>
auto view_of_foreign(Foreign& image) {
  using Traits = ImageTraits<std::remove_const_t<Foreign>>;
  static_assert(Traits::row_major,
                "nuqi: the columns of this image are contiguous, not its rows: make it row-major");
  using Element = std::remove_pointer_t<decltype(Traits::data(image))>;
  static_assert(std::is_const_v<Element> || !std::is_const_v<Foreign>,
                "nuqi: ImageTraits gives write access to a const image");
  using Result = View<Element, Traits::channels>;
  Element* data = Traits::data(image);
  const std::int64_t width = Traits::columns(image);
  const std::int64_t height = Traits::rows(image);
  const std::ptrdiff_t step = Traits::row_stride_bytes(image);
  // Some overloads must not throw: an impossible shape becomes one that every operation refuses.
  if (fault_of_shape(data, width, height, Traits::channels, sizeof(Element), step) != nullptr) {
    return Result(Result::unchecked, nullptr, -1, -1, 0);
  }
  return Result(Result::unchecked, data, width, height, step);
}

}  // namespace detail

/// The view of anything that operations take as an image: of Views, Images, and of what ImageTraits knows.
template <class AnyImage>
[[nodiscard]] auto as_view(AnyImage& image) {
  using Plain = std::remove_const_t<AnyImage>;
  static_assert(!std::is_same_v<Plain, Mask>,
                "nuqi: a Mask stands here for an image: masks come last among the inputs");
  if constexpr (detail::kIsView<Plain>) {
    return detail::copy_of(image);
  } else if constexpr (detail::kIsImage<Plain>) {
    return image.view();
  } else if constexpr (!std::is_same_v<Plain, Mask>) {
    static_assert(
        detail::kIsForeign<ImageTraits<Plain>>,
        "nuqi: this argument is no image: pass a View or an Image, or specialise ImageTraits");
    if constexpr (detail::kIsForeign<ImageTraits<Plain>>) return detail::view_of_foreign(image);
  }
}

namespace detail {

template <class Found>
struct Unpacked;
template <class T, int Channels>
struct Unpacked<View<T, Channels>> {
  using Element = T;
  static constexpr int kChannels = Channels;
};

/// What operations read: a view of const elements.
template <class AnyImage>
auto as_input(const AnyImage& image) {
  using Found = Unpacked<decltype(as_view(image))>;
  static_assert(
      Found::kChannels != kAnyChannels,
      "nuqi: the number of channels is known at run time only: ask for it by as<1>() or as<3>()");
  return View<const typename Found::Element, Found::kChannels>(as_view(image));
}

/// What operations write.
template <class AnyImage>
auto as_output(std::remove_reference_t<AnyImage>& image) {
  using Found = Unpacked<decltype(as_view(image))>;
  static_assert(
      Found::kChannels != kAnyChannels,
      "nuqi: the number of channels is known at run time only: ask for it by as<1>() or as<3>()");
  static_assert(!std::is_const_v<typename Found::Element>, "nuqi: the output is const");
  static_assert(!(kIsImage<AnyImage>),
                "nuqi: the output is a temporary Image: its pixels would be lost");
  return as_view(image);
}

template <class AnyImage>
using ElementOf =
    std::remove_const_t<typename Unpacked<decltype(as_view(std::declval<AnyImage&>()))>::Element>;
template <class AnyImage>
inline constexpr int kChannelsOf =
    Unpacked<decltype(as_view(std::declval<AnyImage&>()))>::kChannels;

template <class AnyImage>
View<const std::uint8_t> mask_view(const AnyImage& bytes) {
  constexpr bool kIsMask =
      std::is_same_v<ElementOf<const AnyImage>, std::uint8_t> && kChannelsOf<const AnyImage> == 1;
  static_assert(kIsMask, "nuqi: a Mask is made of one channel of uint8_t");
  if constexpr (kIsMask) return as_input(bytes);
  return {};
}

}  // namespace detail

/// Selects pixels: those where a byte is not 0. Made explicitly, so that no image is taken for one, and passed
/// as the last of the inputs.
class Mask {
 public:
  template <class AnyImage>
  explicit Mask(const AnyImage& bytes) : view_(detail::mask_view(bytes)) {}

  [[nodiscard]] View<const std::uint8_t> view() const noexcept { return view_; }

 private:
  View<const std::uint8_t> view_;
};

}  // namespace nuqi

#endif
