/// Images in strips: which phase each call of a C function is, and how many rows it gives.
#ifndef NUQI_HPP_STRIP_ROWS_HPP
#define NUQI_HPP_STRIP_ROWS_HPP

#include <nuqi/hpp/bands.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace nuqi::detail {

/// The rows of one image on their way through a C function that takes strips of it. `call` in what
/// follows is call(src, src_step, dst, dst_step, &roi, phase), where phase is 0 for a whole image, 1 for
/// its first strip and 4 for one in the middle. There is no last strip: copies of the last row, which is
/// what lies beyond the edge, push out the rows that wait.
class StripRows {
 public:
  /// `below` rows below a row take part in its result; a first strip must have `least_first` rows;
  /// `alone` says that no other row takes part at all.
  void begin(std::int64_t below, std::int64_t least_first, bool alone) noexcept {
    below_ = below;
    least_first_ = least_first;
    alone_ = alone;
    begun_ = true;
    started_ = false;
    taken_ = held_rows_ = 0;
  }
  void end() noexcept { begun_ = false; }
  [[nodiscard]] bool begun() const noexcept { return begun_; }
  [[nodiscard]] std::int64_t taken() const noexcept { return taken_; }

  /// The result rows that a strip gives, and that the end of the image gives.
  [[nodiscard]] std::int64_t due(std::int64_t rows) const noexcept {
    const std::int64_t zero = 0;
    return std::max(zero, taken_ + rows - below_) - std::max(zero, taken_ - below_);
  }
  [[nodiscard]] std::int64_t due_at_end() const noexcept { return std::min(taken_, below_); }

  template <class T, class D, int C, class Call>
  StatusCode feed(View<const T, C> strip, View<D, C> dst, const Call& call) {
    const std::int64_t height = strip.height();
    // One row has any step: rows that lie too far apart for 32 bits are passed one by one.
    const bool far = strip.step() > kMost || dst.step() > kMost;
    const std::int64_t most = far ? 1 : std::int64_t{1} << 30;
    std::int64_t y = 0, given = 0;
    if (!started_ && (held_rows_ > 0 || std::min(height, most) < least_first_)) {
      y = std::min(least_first_ - held_rows_, height);
      hold(strip, y);
      if (held_rows_ == least_first_) {
        const View<const T, C> held = of_rows<const T, C>(held_.data(), strip.width(), held_rows_);
        const StatusCode status = pass(held, dst, given, call);
        if (status != StatusOk) return status;
      }
    }
    while (y < height) {
      const std::int64_t rows = std::min(most, height - y);
      const StatusCode status = pass(part(strip, y, rows), dst, given, call);
      if (status != StatusOk) return status;
      y += rows;
    }
    taken_ += height;
    if (below_ > 0) {
      const auto* last = reinterpret_cast<const unsigned char*>(strip.row(height - 1));
      last_row_.assign(last, last + strip.row_bytes());
    }
    return StatusOk;
  }

  template <class T, class D, int C, class Call>
  StatusCode finish(View<D, C> dst, const Call& call) {
    const View<const T, C> last = of_rows<const T, C>(last_row_.data(), dst.width(), 1);
    const std::int64_t copies = started_ ? below_ : taken_;
    std::int64_t given = 0;
    if (!started_) {  // too few rows for a first strip
      while (held_rows_ < least_first_) hold(last, 1);
      const View<const T, C> held = of_rows<const T, C>(held_.data(), dst.width(), held_rows_);
      const StatusCode status = pass(held, dst, given, call);
      if (status != StatusOk) return status;
    }
    for (std::int64_t i = 0; i < copies; ++i) {
      const StatusCode status = pass(last, dst, given, call);
      if (status != StatusOk) return status;
    }
    return StatusOk;
  }

 private:
  template <class T, int C>
  static View<T, C> of_rows(const unsigned char* data, std::int64_t width,
                            std::int64_t rows) noexcept {
    const auto step =
        static_cast<std::ptrdiff_t>(width) * C * static_cast<std::ptrdiff_t>(sizeof(T));
    return {View<T, C>::unchecked, reinterpret_cast<T*>(data), width, rows, step};
  }
  template <class T, int C>
  static View<T, C> part(View<T, C> view, std::int64_t y, std::int64_t rows) noexcept {
    return {View<T, C>::unchecked, view.row(y), view.width(), rows, view.step()};
  }

  template <class T, int C>
  void hold(View<const T, C> strip, std::int64_t rows) {
    const auto bytes = static_cast<std::size_t>(strip.row_bytes());
    held_.resize(static_cast<std::size_t>(held_rows_ + rows) * bytes);
    for (std::int64_t y = 0; y < rows; ++y) {
      std::memcpy(held_.data() + static_cast<std::size_t>(held_rows_ + y) * bytes, strip.row(y),
                  bytes);
    }
    held_rows_ += rows;
  }

  /// One call, whose results go below those given so far.
  template <class T, class D, int C, class Call>
  StatusCode pass(View<const T, C> strip, View<D, C> dst, std::int64_t& given, const Call& call) {
    RoiSize roi{static_cast<std::int32_t>(strip.width()),
                static_cast<std::int32_t>(strip.height())};
    // Where no row comes out there may be no destination, but the C functions want a pointer.
    D nowhere{};
    D* const to = given < dst.height() ? dst.row(given) : &nowhere;
    // Of rows too far apart for 32 bits one comes out at a time: any step will do.
    const std::int64_t tight = strip.width() * C * std::int64_t{sizeof(D)};
    const std::int64_t step = dst.height() > 1 && dst.step() <= kMost ? dst.step() : tight;
    const StatusCode status = call(strip.data(), static_cast<std::int32_t>(strip.step()), to,
                                   static_cast<std::int32_t>(step), &roi,
                                   alone_     ? 0
                                   : started_ ? 4
                                              : 1);
    if (status < 0) return status;
    started_ = true;
    given += roi.height;
    return StatusOk;
  }

  std::int64_t below_ = 0, least_first_ = 0, taken_ = 0, held_rows_ = 0;
  bool alone_ = false, begun_ = false, started_ = false;
  std::vector<unsigned char> held_, last_row_;
};

}  // namespace nuqi::detail

#endif
