/// Histograms of one channel, and of two together.
#ifndef NUQI_HPP_HISTOGRAM_HPP
#define NUQI_HPP_HISTOGRAM_HPP

#include <nuqi/hpp/bands.hpp>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace nuqi {

namespace detail {

inline constexpr Outcome kBadLevels{StatusBadArg,
                                    "levels are two or more integers from 0 to 256 that ascend"};

inline Outcome check_levels(const std::vector<int>& levels) noexcept {
  if (levels.size() < 2 || levels.front() < 0 || levels.back() > 256) return kBadLevels;
  for (std::size_t i = 1; i < levels.size(); ++i) {
    if (levels[i - 1] >= levels[i]) return kBadLevels;
  }
  return {};
}

/// C's levels are bytes and cannot say 256. It gets all others, and 0 in front of them: what lies above the last of
/// them is the rest.
class BinsOfBytes {
 public:
  explicit BinsOfBytes(const std::vector<int>& levels) noexcept
      : open_(levels.back() == 256), extra_(levels[0] > 0) {
    if (extra_) bytes_[count_++] = 0;
    for (const int level : levels) {
      if (level < 256) bytes_[count_++] = static_cast<std::uint8_t>(level);
    }
  }

  Outcome add(View<const std::uint8_t> src) {
    return in_bands(
        kMost,
        [&](RoiSize roi, auto part) {
          const StatusCode status =
              nuqiCalcHist_8u_C1R(part.data, part.step, roi, band_, count_, bytes_);
          for (std::int32_t i = 0; i < count_ - 1; ++i) totals_[i] += band_[i];
          pixels_ += std::int64_t{roi.width} * roi.height;
          return status;
        },
        src);
  }
  [[nodiscard]] std::vector<std::int64_t> counts() const {
    std::vector<std::int64_t> counts(totals_ + (extra_ ? 1 : 0), totals_ + (count_ - 1));
    if (open_) {
      std::int64_t rest = pixels_;
      for (std::int32_t i = 0; i < count_ - 1; ++i) rest -= totals_[i];
      counts.push_back(rest);
    }
    return counts;
  }

 private:
  bool open_;
  bool extra_;
  std::int32_t count_ = 0;
  std::uint8_t bytes_[257] = {};
  std::int32_t band_[257] = {};
  std::int64_t totals_[257] = {};
  std::int64_t pixels_ = 0;
};

}  // namespace detail

/// How many pixels of uint8_t lie in each bin: bin i holds those from levels[i] to below levels[i + 1]. Levels are
/// integers from 0 to 256 that ascend: histogram(image, {0, 128, 256}) counts dark and bright ones.
template <class Src>
[[nodiscard]] std::vector<std::int64_t> histogram(const Src& src, const std::vector<int>& levels) {
  static_assert(std::is_same_v<detail::ElementOf<const Src>, std::uint8_t> &&
                    detail::kChannelsOf<const Src> == 1,
                "nuqi: histogram takes one channel of uint8_t");
  const View<const std::uint8_t> image = detail::as_input(src);
  detail::require(detail::check_sizes(image), "histogram", src, levels.size());
  detail::require(detail::check_levels(levels), "histogram", src, levels.size());
  detail::BinsOfBytes bins(levels);
  detail::require(bins.add(image), "histogram", src, levels.size());
  return bins.counts();
}
/// One bin for each of the 256 values.
template <class Src>
[[nodiscard]] std::vector<std::int64_t> histogram(const Src& src) {
  std::vector<int> levels(257);
  for (std::size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<int>(i);
  return histogram(src, levels);
}

/// How often values of two channels come together.
struct JointHistogram {
  std::int64_t columns = 0;          ///< bins of the first channel
  std::int64_t rows = 0;             ///< bins of the second channel
  std::vector<std::int64_t> counts;  ///< row by row

  /// The pixels whose first channel lies in bin i, and whose second in bin j.
  [[nodiscard]] std::int64_t operator()(std::int64_t i, std::int64_t j) const {
    return counts[static_cast<std::size_t>(j * columns + i)];
  }
};

/// The joint histogram of the two channels of an image of uint8_t, over levels of each: integers from 0 to 256 that
/// ascend.
template <class Src>
[[nodiscard]] JointHistogram joint_histogram(const Src& src, const std::vector<int>& first,
                                             const std::vector<int>& second) {
  static_assert(std::is_same_v<detail::ElementOf<const Src>, std::uint8_t> &&
                    detail::kChannelsOf<const Src> == 2,
                "nuqi: joint_histogram takes two channels of uint8_t");
  const View<const std::uint8_t, 2> image = detail::as_input(src);
  detail::require(detail::check_sizes(image), "joint_histogram", src, first.size(), second.size());
  detail::require(detail::check_levels(first), "joint_histogram", src, first.size(), second.size());
  detail::require(detail::check_levels(second), "joint_histogram", src, first.size(),
                  second.size());
  const std::int32_t bins[] = {static_cast<std::int32_t>(first.size()) - 1,
                               static_cast<std::int32_t>(second.size()) - 1};
  std::vector<std::int32_t> levels(first.begin(), first.end());
  levels.insert(levels.end(), second.begin(), second.end());
  std::vector<std::int32_t> band(first.size() * second.size());  // C clears a row and a column more
  JointHistogram all = {bins[0], bins[1], {}};
  all.counts.resize(static_cast<std::size_t>(all.columns * all.rows));
  const auto add = [&](RoiSize roi, auto part) {
    const StatusCode status = nuqiCalcHist_8u_C2R(
        part.data, part.step, roi, band.data(),
        bins[0] * static_cast<std::int32_t>(sizeof(std::int32_t)), bins, levels.data());
    for (std::size_t i = 0; i < all.counts.size(); ++i) all.counts[i] += band[i];
    return status;
  };
  detail::require(detail::in_bands(detail::kMost, add, image), "joint_histogram", src, first.size(),
                  second.size());
  return all;
}

/// Throws Error if there are no counters, more than 2^31, or if all of them add up to 0: before dividing by their sum.
inline void check_histogram(const std::int32_t* counts, std::int64_t length) {
  float unused = 0;
  detail::require(length > detail::kMost
                      ? detail::kTooLarge
                      : detail::Outcome(nuqiConvertHist1D_32s32f(
                            counts, &unused, static_cast<std::int32_t>(length), 0)),
                  "check_histogram", length);
}

}  // namespace nuqi

#endif
