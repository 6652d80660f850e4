/// Structuring elements of erosions and dilations.
#ifndef NUQI_HPP_ELEMENT_HPP
#define NUQI_HPP_ELEMENT_HPP

#include <nuqi/hpp/view.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace nuqi {

/// The pixels around a pixel that an erosion or dilation looks at. The anchor, in the middle unless
/// anchored() says otherwise, is the one that lies on the result's pixel.
class Element {
 public:
  /// All of width x height pixels. Throws Error if a side is below 1, as all of these do.
  [[nodiscard]] static Element rectangle(std::int32_t width, std::int32_t height) {
    return Element("Element::rectangle", kRectangle, width, height);
  }
  /// The row and the column of the anchor.
  [[nodiscard]] static Element cross(std::int32_t width, std::int32_t height) {
    return Element("Element::cross", kCross, width, height);
  }
  /// A filled ellipse; 3x3 is a cross. It is passed as arbitrary pixels: the C functions have an ellipse
  /// of their own, whose middle row is empty at odd heights.
  [[nodiscard]] static Element ellipse(std::int32_t width, std::int32_t height) {
    constexpr const char* kName = "Element::ellipse";
    // So that all products below stay within 64 bits.
    constexpr std::int32_t kLongest = 4096;
    if (width > kLongest || height > kLongest) refuse(kName, width, height, "a side exceeds 4096");
    Element result(kName, kArbitrary, width, height);
    // Offsets from the middle are u / 2 and v / 2, half axes a / 8 and b / 8: an eighth of a pixel less
    // than touches the rectangle.
    const std::int64_t a = 4 * std::int64_t{width} - 1, b = 4 * std::int64_t{height} - 1;
    for (std::int64_t v = 1 - height; v < height; v += 2) {
      for (std::int64_t u = 1 - width; u < width; u += 2) {
        result.mask_.push_back(16 * (u * u * b * b + v * v * a * a) <= a * a * b * b ? 1 : 0);
      }
    }
    return result;
  }
  /// The pixels of a view that are not 0. Throws Error if there are none.
  [[nodiscard]] static Element arbitrary(View<const std::uint8_t> pixels) {
    constexpr const char* kName = "Element::arbitrary";
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    if (pixels.empty()) throw Error(StatusBadSize, kName, pixels.text(), "the image is empty");
    if (pixels.width() > kMost || pixels.height() > kMost) {
      throw Error(StatusBadSize, kName, pixels.text(), "a side exceeds 2^31 - 1");
    }
    Element result(kName, kArbitrary, static_cast<std::int32_t>(pixels.width()),
                   static_cast<std::int32_t>(pixels.height()));
    bool any = false;
    for (std::int64_t y = 0; y < pixels.height(); ++y) {
      for (std::int64_t x = 0; x < pixels.width(); ++x) {
        const bool inside = pixels(x, y) != 0;
        any = any || inside;
        result.mask_.push_back(inside ? 1 : 0);
      }
    }
    if (!any) throw Error(StatusBadArg, kName, pixels.text(), "no pixel belongs to the element");
    return result;
  }

  /// The same element with another anchor. Throws Error if (x, y) lies outside.
  [[nodiscard]] Element anchored(std::int32_t x, std::int32_t y) const {
    if (x < 0 || y < 0 || x >= size_.width || y >= size_.height) {
      throw Error(StatusBadArg, "Element::anchored", std::to_string(x) + ", " + std::to_string(y),
                  "the anchor lies outside the element");
    }
    Element result = *this;
    result.anchor_ = {x, y};
    return result;
  }
  /// The same element turned by 180 degrees, its anchor too. Neither erosion nor dilation reflects its
  /// element: the second step of an opening or closing takes the turned one.
  [[nodiscard]] Element turned() const {
    Element result = *this;
    std::reverse(result.mask_.begin(), result.mask_.end());
    result.anchor_ = {size_.width - 1 - anchor_.x, size_.height - 1 - anchor_.y};
    return result;
  }
  /// The rectangle or cross of the same pixels and anchor, which are faster, or the element itself. Of
  /// floats, NaNs and zeros of both signs compare in another order there.
  [[nodiscard]] Element simplified() const {
    if (shape_ != kArbitrary) return *this;
    bool rectangle = true, cross = true;
    std::size_t i = 0;
    for (std::int32_t y = 0; y < size_.height; ++y) {
      for (std::int32_t x = 0; x < size_.width; ++x) {
        const bool inside = mask_[i++] != 0;
        rectangle = rectangle && inside;
        cross = cross && inside == (x == anchor_.x || y == anchor_.y);
      }
    }
    Element result = *this;
    if (!rectangle && !cross) return result;
    result.shape_ = rectangle ? kRectangle : kCross;
    result.mask_.clear();
    return result;
  }

  /// Width and height.
  [[nodiscard]] RoiSize size() const noexcept { return size_; }
  [[nodiscard]] PixelPoint anchor() const noexcept { return anchor_; }
  /// As C functions number them: 0 rectangle, 1 cross, 100 arbitrary.
  [[nodiscard]] std::int32_t shape() const noexcept { return shape_; }
  /// Of an arbitrary element: row by row, not 0 inside. Else empty.
  [[nodiscard]] const std::vector<std::int32_t>& mask() const noexcept { return mask_; }

 private:
  static constexpr std::int32_t kRectangle = 0, kCross = 1, kArbitrary = 100;

  Element(const char* function, std::int32_t shape, std::int32_t width, std::int32_t height)
      : shape_(shape), size_{width, height}, anchor_{width / 2, height / 2} {
    if (width < 1 || height < 1) refuse(function, width, height, "a side is below 1");
  }
  [[noreturn]] static void refuse(const char* function, std::int32_t width, std::int32_t height,
                                  const char* why) {
    throw Error(StatusBadSize, function, std::to_string(width) + ", " + std::to_string(height),
                why);
  }

  std::int32_t shape_;
  RoiSize size_;
  PixelPoint anchor_;
  std::vector<std::int32_t> mask_{};
};

}  // namespace nuqi

#endif
