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

/// The selection of a call: a channel, from 0 on, and perhaps a mask.
template <bool kMasked>
struct Choice {
  int channel;
};
template <>
struct Choice<true> {
  int channel;
  const Mask& mask;
};

/// Channels of any integer type.
template <class Channel>
constexpr int to_channel(Channel channel) noexcept {
  constexpr int kMany = 1000000;
  return channel < Channel{0} ? -1 : channel > Channel{100} ? kMany : static_cast<int>(channel);
}
constexpr Choice<false> choose() noexcept { return {0}; }
template <class Only>
constexpr auto choose(const Only& only) noexcept {
  if constexpr (std::is_same_v<Only, Mask>) {
    return Choice<true>{0, only};
  } else if constexpr (kIsChannel<Only>) {
    return Choice<false>{to_channel(only)};
  } else {
    return Choice<false>{0};
  }
}
template <class Channel>
constexpr Choice<true> choose(const Mask& mask, const Channel& channel) noexcept {
  return {choose(channel).channel, mask};
}
template <class First, class Second, class... More>  // expect_selection has said why not
constexpr Choice<false> choose(const First&, const Second&, const More&...) noexcept {
  return {0};
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

/// The number of pixels that a mask selects: an L1 norm, see norms.hpp.
std::int64_t count_of(View<const std::uint8_t> mask);

[[gnu::noinline, gnu::cold]] inline bool selects_any(const Mask& mask) {
  return count_of(mask.view()) > 0;
}

// ---- Reading

/// The common case, by one C call. False where it is another, or a failure.
template <class Statistic, bool kMasked, class Result, class First, class... Others>
[[gnu::always_inline]] inline bool read_once(Result& result, int channel, First first,
                                             Others... others) {
  using T = typename First::element;
  constexpr int kChannels = First::channels();
  if (!ready(first, others...) || first.size() > Statistic::template kPixels<T, kMasked> ||
      check_channel(channel, kChannels).failed()) {
    return false;
  }
  return Statistic::template once<T, kChannels>(result, channel, roi_of(first), whole(first),
                                                whole(others)...) >= 0;
}

/// All else: what is wrong is found out, and bands are cut.
template <class Statistic, bool kMasked, class First, class... Others>
[[gnu::noinline, gnu::cold]] auto read_slowly(const char* name, Choice<kMasked> choice,
                                              const First& first, const Others&... others) {
  constexpr int kChannels = kChannelsOf<const First>;
  const auto read = [&](auto... mask) {
    const auto check = [&](Outcome outcome) {
      if constexpr (kChannels == 1) {
        require(outcome, name, first, others..., mask...);
      } else {
        require(outcome, name, first, others..., mask..., choice.channel);
      }
    };
    check(check_sizes(as_input(first), as_input(others)..., mask...));
    check(check_channel(choice.channel, kChannels));
    const auto result =
        Statistic::of_bands(check, choice.channel, as_input(first), as_input(others)..., mask...);
    if (Statistic::is_nothing(result) && ((count_of(mask) == 0) || ...)) check(kNothingSelected);
    return result;
  };
  if constexpr (kMasked) {
    return read(choice.mask.view());
  } else {
    return read();
  }
}

/// Reads one image, or two that are alike. A statistic has
///   Result<T>, kPixels<T, kMasked>                 of elements T; the pixels that one C call takes
///   once<T, C>(result, channel, roi, parts...)     that call: a status; the mask's part comes last
///   of_bands(check, channel, views...)             the same of images of any size; check(status) throws
///   is_nothing(result)                             whether an empty mask may be the reason
template <class Statistic, bool kMasked, class First, class... Others>
[[gnu::always_inline]] inline auto read(const char* name, Choice<kMasked> choice,
                                        const First& first, const Others&... others) {
  typename Statistic::template Result<ElementOf<const First>> result{};
  if constexpr (kMasked) {
    if (read_once<Statistic, true>(result, choice.channel, as_input(first), as_input(others)...,
                                   choice.mask.view()) &&
        (!Statistic::is_nothing(result) || selects_any(choice.mask))) {
      return result;
    }
  } else if (read_once<Statistic, false>(result, choice.channel, as_input(first),
                                         as_input(others)...)) {
    return result;
  }
  return read_slowly<Statistic>(name, choice, first, others...);
}

}  // namespace nuqi::detail

#endif
