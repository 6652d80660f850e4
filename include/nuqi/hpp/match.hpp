/// Template matching.
#ifndef NUQI_HPP_MATCH_HPP
#define NUQI_HPP_MATCH_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/checks.hpp>
#include <nuqi/hpp/data_type.hpp>
#include <nuqi/hpp/overloads.hpp>
#include <nuqi/hpp/scratch.hpp>

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

namespace nuqi {

/// How template matching scores a place.
enum class MatchMethod {
  sq_diff,         ///< the sum of squared differences: 0 where they are equal
  sq_diff_normed,  ///< that, divided by the root of both energies
  corr,            ///< the sum of products
  corr_normed,     ///< that, divided by the root of both energies: at most about 1
  coeff,           ///< the sum of products less the means
  coeff_normed     ///< the correlation coefficient: about -1 to 1
};

namespace detail {

// clang-format off
inline constexpr auto kMatchSqDiff = overloads(
    fn<std::uint8_t, 1>(nuqiMatchTemplate_SqDiff_8u32f_C1R),
    fn<std::int8_t, 1>(nuqiMatchTemplate_SqDiff_8s32f_C1R),
    fn<float, 1>(nuqiMatchTemplate_SqDiff_32f_C1R));
inline constexpr auto kMatchSqDiffNormed = overloads(
    fn<std::uint8_t, 1>(nuqiMatchTemplate_SqDiffNormed_8u32f_C1R),
    fn<std::int8_t, 1>(nuqiMatchTemplate_SqDiffNormed_8s32f_C1R),
    fn<float, 1>(nuqiMatchTemplate_SqDiffNormed_32f_C1R));
inline constexpr auto kMatchCorr = overloads(
    fn<std::uint8_t, 1>(nuqiMatchTemplate_Corr_8u32f_C1R),
    fn<std::int8_t, 1>(nuqiMatchTemplate_Corr_8s32f_C1R),
    fn<float, 1>(nuqiMatchTemplate_Corr_32f_C1R));
inline constexpr auto kMatchCorrNormed = overloads(
    fn<std::uint8_t, 1>(nuqiMatchTemplate_CorrNormed_8u32f_C1R),
    fn<std::int8_t, 1>(nuqiMatchTemplate_CorrNormed_8s32f_C1R),
    fn<float, 1>(nuqiMatchTemplate_CorrNormed_32f_C1R));
inline constexpr auto kMatchCoeff = overloads(
    fn<std::uint8_t, 1>(nuqiMatchTemplate_Coeff_8u32f_C1R),
    fn<std::int8_t, 1>(nuqiMatchTemplate_Coeff_8s32f_C1R),
    fn<float, 1>(nuqiMatchTemplate_Coeff_32f_C1R));
inline constexpr auto kMatchCoeffNormed = overloads(
    fn<std::uint8_t, 1>(nuqiMatchTemplate_CoeffNormed_8u32f_C1R),
    fn<std::int8_t, 1>(nuqiMatchTemplate_CoeffNormed_8s32f_C1R),
    fn<float, 1>(nuqiMatchTemplate_CoeffNormed_32f_C1R));
// clang-format on

inline constexpr Outcome kTemplateTooLarge{StatusBadSize,
                                           "the template is wider or higher than the image"};
inline constexpr Outcome kNotScores{
    StatusBadSize,
    "the output must be image - template + 1 pixels wide and high: one for each place"};
inline constexpr Outcome kTemplateSum{StatusBadSize,
                                      "the sum of the template's pixels exceeds 2^31 - 1"};
inline constexpr Outcome kNoSuchMethod{StatusUnsupported, "there is no such method"};

template <class T>
struct Matching {
  StatusCode (*function)(const T*, std::int32_t, RoiSize, const T*, std::int32_t, RoiSize, float*,
                         std::int32_t, void*);
  StatusCode (*query)(RoiSize, RoiSize, std::int32_t, std::int32_t*);
};

template <class T>
constexpr Matching<T> matching(MatchMethod method) noexcept {
  switch (method) {
    case MatchMethod::sq_diff:
      return {find<T, 1>(kMatchSqDiff), nuqiMatchTemplateGetBufSize_SqDiff};
    case MatchMethod::sq_diff_normed:
      return {find<T, 1>(kMatchSqDiffNormed), nuqiMatchTemplateGetBufSize_SqDiffNormed};
    case MatchMethod::corr: return {find<T, 1>(kMatchCorr), nuqiMatchTemplateGetBufSize_Corr};
    case MatchMethod::corr_normed:
      return {find<T, 1>(kMatchCorrNormed), nuqiMatchTemplateGetBufSize_CorrNormed};
    case MatchMethod::coeff: return {find<T, 1>(kMatchCoeff), nuqiMatchTemplateGetBufSize_Coeff};
    case MatchMethod::coeff_normed:
      return {find<T, 1>(kMatchCoeffNormed), nuqiMatchTemplateGetBufSize_CoeffNormed};
  }
  return {};
}

/// The C functions keep the sum of a template of bytes, which two of the methods need, in 32 bits.
template <class T>
bool sum_wraps(View<const T, 1> tpl) noexcept {
  constexpr std::int64_t kMostPixels = kMost / 255;
  if (!std::is_same_v<T, std::uint8_t> || tpl.size() <= kMostPixels) return false;
  std::int64_t sum = 0;
  for (std::int64_t y = 0; y < tpl.height(); ++y) {
    for (std::int64_t x = 0; x < tpl.width(); ++x) sum += static_cast<std::int64_t>(tpl(x, y));
  }
  return sum > kMost;
}

/// Whether an output has a pixel for each place of the template, none of which the images lack.
template <class Src, class Template, class Dst>
[[gnu::always_inline]] inline bool places_match(Src src, Template tpl, Dst dst) noexcept {
  return dst.width() == src.width() - tpl.width() + 1 &&
         dst.height() == src.height() - tpl.height() + 1;
}

template <class Output, class Src, class Template>
[[gnu::noinline, gnu::cold]] Outcome check_match(const Src& image, const Template& part,
                                                 std::remove_reference_t<Output>& to) noexcept {
  const auto src = as_input(image);
  const auto tpl = as_input(part);
  const auto dst = as_output<Output>(to);
  if (src.empty() || tpl.empty()) return kEmpty;
  if (tpl.width() > src.width() || tpl.height() > src.height()) return kTemplateTooLarge;
  if (!places_match(src, tpl, dst)) return kNotScores;
  if (!fits(src, tpl, dst)) return kTooLarge;
  return check_apart(dst, src, tpl);
}

template <class Output, class Src, class Template>
[[gnu::always_inline]] inline Outcome match_template(const Src& image, const Template& part,
                                                     std::remove_reference_t<Output>& to,
                                                     MatchMethod method,
                                                     Scratch& scratch) noexcept {
  using T = ElementOf<const Src>;
  static_assert(kHolds<T, kChannelsOf<const Src>, std::remove_const_t<decltype(kMatchSqDiff)>> &&
                    std::is_same_v<T, ElementOf<const Template>> &&
                    kChannelsOf<const Template> == 1,
                "nuqi: match_template takes an image and a template of one channel, both uint8_t, "
                "int8_t or float");
  expect_output<float, 1, std::remove_reference_t<Output>>();
  const auto src = as_input(image);
  const auto tpl = as_input(part);
  const auto dst = as_output<Output>(to);
  if (!ready(src) || !ready(tpl) || !ready(dst) || !places_match(src, tpl, dst) ||
      !lies<Where::apart>(dst, src, tpl)) {
    if (const Outcome bad = check_match<Output>(image, part, to); bad.failed()) return bad;
  }
  const Matching<T> how = matching<T>(method);
  if (how.function == nullptr) return kNoSuchMethod;
  const bool sums = method == MatchMethod::coeff || method == MatchMethod::coeff_normed;
  if (sums && sum_wraps(tpl)) return kTemplateSum;
  const RoiSize src_roi = roi_of(src), tpl_roi = roi_of(tpl);
  void* const buffer = scratch.get_for(
      {reinterpret_cast<void (*)()>(how.function), size_key(src), size_key(tpl)}, [=] {
        std::int32_t bytes = 0;
        const bool known = how.query(src_roi, tpl_roi, kDataType<T>, &bytes) == StatusOk;
        return known ? static_cast<std::size_t>(bytes) : 0;
      });
  if (buffer == nullptr) return kNoScratch;
  return how.function(src.data(), static_cast<std::int32_t>(src.step()), src_roi, tpl.data(),
                      static_cast<std::int32_t>(tpl.step()), tpl_roi, dst.data(),
                      static_cast<std::int32_t>(dst.step()), buffer);
}

}  // namespace detail

/// Scores every place where the template lies wholly inside the image: dst(x, y) is that of the template's
/// top-left pixel at (x, y). Image and template: one channel of uint8_t, int8_t or float, both alike; dst: float,
/// image - template + 1 pixels wide and high, apart from both. Throws Error.
template <class Source, class Template, class Output>
void match_template(const Source& src, const Template& tpl, Output&& dst, MatchMethod method,
                    Scratch& scratch) {
  detail::require(detail::match_template<Output>(src, tpl, dst, method, scratch), "match_template",
                  src, tpl, dst);
}
template <class Source, class Template, class Output>
[[nodiscard]] StatusCode match_template(const Source& src, const Template& tpl, Output&& dst,
                                        MatchMethod method, Scratch& scratch,
                                        std::nothrow_t /*tag*/) noexcept {
  return detail::match_template<Output>(src, tpl, dst, method, scratch).status;
}
template <class Source, class Template, class Output>
void match_template(const Source& src, const Template& tpl, Output&& dst,
                    MatchMethod method = MatchMethod::coeff_normed) {
  Scratch scratch;
  match_template(src, tpl, std::forward<Output>(dst), method, scratch);
}
template <class Source, class Template, class Output>
[[nodiscard]] StatusCode match_template(const Source& src, const Template& tpl, Output&& dst,
                                        MatchMethod method, std::nothrow_t tag) noexcept {
  Scratch scratch;
  return match_template(src, tpl, std::forward<Output>(dst), method, scratch, tag);
}

}  // namespace nuqi

#endif
