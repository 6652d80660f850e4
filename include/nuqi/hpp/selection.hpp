/// Which pixels a statistic takes: all, or those that a mask selects, of one channel.
#ifndef NUQI_HPP_SELECTION_HPP
#define NUQI_HPP_SELECTION_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/overloads.hpp>

#include <cstdint>
#include <type_traits>

namespace nuqi::detail {

template <class T>
inline constexpr bool kIsChannel = std::is_integral_v<T> && !std::is_same_v<T, bool>;

/// What may follow the images: nothing, a Mask, a channel, or a Mask and a channel.
template <class... Arguments>
struct Selection {
  static constexpr bool kLegal = false;
  static constexpr bool kMasked = false;
  static constexpr bool kOneChannel = false;
};
template <>
struct Selection<> {
  static constexpr bool kLegal = true;
  static constexpr bool kMasked = false;
  static constexpr bool kOneChannel = false;
};
template <class Only>
struct Selection<Only> {
  static constexpr bool kMasked = std::is_same_v<Only, Mask>;
  static constexpr bool kOneChannel = kIsChannel<Only>;
  static constexpr bool kLegal = kMasked || kOneChannel;
};
template <class First, class Second>
struct Selection<First, Second> {
  static constexpr bool kMasked = std::is_same_v<First, Mask>;
  static constexpr bool kOneChannel = kIsChannel<Second>;
  static constexpr bool kLegal = kMasked && kOneChannel;
};

template <int Channels, class... Arguments>
constexpr void expect_selection() noexcept {
  using Found = Selection<Arguments...>;
  static_assert(Found::kLegal,
                "nuqi: after the images come a Mask, a channel, or a Mask and a channel. An image "
                "becomes a mask "
                "by nuqi::Mask(image) only; two images are compared by norm_diff and norm_rel");
  static_assert(!Found::kLegal || Channels != 1 || !Found::kOneChannel,
                "nuqi: this image has one channel: leave the number of the channel out");
  static_assert(!Found::kLegal || Channels == 1 || Found::kOneChannel,
                "nuqi: this image has several channels: say which is meant, counted from 0");
}

template <class... Channel>
View<const std::uint8_t> mask_of(const Mask& mask, const Channel&... /*channel*/) noexcept {
  return mask.view();
}
/// The channel, from 0 on; numbers that none can have become -1.
inline int channel_of() noexcept { return 0; }
template <class Last>
int channel_of(const Last& last) noexcept {
  if constexpr (kIsChannel<Last>) {
    return last < Last{0} || last > Last{100} ? -1 : static_cast<int>(last);
  } else {
    return 0;
  }
}
template <class Channel>
int channel_of(const Mask& /*mask*/, const Channel& channel) noexcept {
  return channel_of(channel);
}

/// A mask that selects everything, for functions that have no other form: bands of so many pixels.
struct Ones {
  static constexpr std::int64_t kPixels = 16384;
  std::uint8_t bytes[kPixels];

  constexpr Ones() noexcept : bytes() {
    for (std::uint8_t& byte : bytes) byte = 255;
  }
};
inline constexpr Ones kOnes{};

[[gnu::always_inline]] inline Part<const std::uint8_t> ones(RoiSize roi) noexcept {
  return {kOnes.bytes, roi.width};
}

/// What a statistic refuses: empty images, unequal sizes, channels that are not there.
template <class First, class... Others>
Outcome check_reading(int channel, First first, Others... others) noexcept {
  if (const Outcome bad = check_sizes(first, others...); bad.failed()) return bad;
  return check_channel(channel, First::channels());
}
/// The bytes of a view as a view again, within a band.
template <class T>
View<T> view_of(Part<T> part, RoiSize roi) noexcept {
  return View<T>(View<T>::unchecked, part.data, roi.width, roi.height, part.step);
}

/// C functions for one channel of several take its number, from 1 on, before their results.
template <int Channels, class Function, class... Results>
[[gnu::always_inline]] inline auto reading(Function* function, int channel,
                                           Results... results) noexcept {
  if constexpr (Channels == 1) {
    return flat(function, results...);
  } else {
    return flat(function, static_cast<std::int32_t>(channel + 1), results...);
  }
}

}  // namespace nuqi::detail

#endif
