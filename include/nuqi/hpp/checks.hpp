/// What is looked at before a call: sizes, overlap. And what becomes of failures.
#ifndef NUQI_HPP_CHECKS_HPP
#define NUQI_HPP_CHECKS_HPP

#include <nuqi/hpp/image.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace nuqi::detail {

// ---- Failures

template <class Argument, class = void>
inline constexpr bool kHasText = false;
template <class Argument>
inline constexpr bool kHasText<Argument, std::void_t<decltype(&Argument::text)>> = true;

template <class Argument>
std::string describe(const Argument& argument) {
  if constexpr (std::is_same_v<Argument, Mask>) {
    return "mask " + argument.view().text();
  } else if constexpr (kHasText<Argument>) {
    return argument.text();
  } else if constexpr (std::is_arithmetic_v<Argument>) {
    return std::to_string(argument);
  } else {
    return as_view(argument).text();
  }
}

/// Throws what a call came to. Apart from require(), so that nothing of it lies in the way of success.
template <class... Arguments>
[[noreturn, gnu::noinline, gnu::cold]] void refuse(Outcome outcome, const char* function,
                                                   const Arguments&... arguments) {
  std::string list;
  ((list += (list.empty() ? "" : ", ") + describe(arguments)), ...);
  throw Error(outcome.status, function, list, outcome.reason());
}

/// Throws Error if a call failed: `function` is the operation, a literal; the arguments are described in the
/// message.
template <class... Arguments>
[[gnu::always_inline]] inline void require(Outcome outcome, const char* function,
                                           const Arguments&... arguments) {
  if (outcome.failed()) refuse(outcome, function, arguments...);
}

// ---- Types

template <class First, class... Others>
constexpr void expect_alike() noexcept {
  static_assert(
      ((std::is_same_v<ElementOf<First>, ElementOf<Others>> &&
        kChannelsOf<First> == kChannelsOf<Others>)&&...),
      "nuqi: the images differ in their elements or channels, and this operation needs them alike");
}
template <class T, int Channels, class... Outputs>
constexpr void expect_output() noexcept {
  static_assert(
      ((std::is_same_v<ElementOf<Outputs>, T> && kChannelsOf<Outputs> == Channels) && ...),
      "nuqi: this operation writes other elements, or another number of channels");
}

// ---- Sizes

inline constexpr Outcome kEmpty{StatusBadSize, "an image is empty"};
inline constexpr Outcome kNoShape{StatusBadSize, "an image's step or size is impossible"};
inline constexpr Outcome kUnequal{StatusBadSize, "the sizes differ"};
inline constexpr Outcome kOverlap{StatusBadArg, "the output overlaps an input or another output"};
inline constexpr Outcome kTooLarge{
    StatusBadSize, "this operation takes images within 2^31 pixels and bytes a row"};
inline constexpr Outcome kNoMemory{StatusNoMemory, "there is not enough memory"};
inline constexpr Outcome kNoScratch{StatusNoMemory,
                                    "the working memory exceeds 2^31 - 1 bytes, or what there is"};
inline constexpr Outcome kNoChannel{StatusBadCoi, "there is no such channel: they count from 0"};
inline constexpr Outcome kNothingSelected{StatusBadSize, "the mask selects nothing"};

template <class First, class... Others>
constexpr bool same_size([[maybe_unused]] First first, Others... others) noexcept {
  return ((first.width() == others.width() && first.height() == others.height()) && ...);
}

/// One image or several: none empty, all of one size.
template <class First, class... Others>
constexpr Outcome check_sizes(First first, Others... others) noexcept {
  if (!first.empty() && same_size(first, others...)) return {};
  if (first.width() < 0 || ((others.width() < 0) || ...)) return kNoShape;
  return first.empty() || (others.empty() || ...) ? kEmpty : kUnequal;
}

// ---- Overlap

/// A view's memory, whatever its type.
struct Extent {
  std::uintptr_t begin;
  std::int64_t rows;
  std::int64_t row_bytes;
  std::int64_t step;

  template <class T, int Channels>
  explicit Extent(View<T, Channels> view) noexcept
      : begin(reinterpret_cast<std::uintptr_t>(view.data())),
        rows(view.height()),
        row_bytes(view.row_bytes()),
        step(view.step()) {}
};

/// Whether rows share bytes. With one step for both, as that of ROIs in one picture, row z of b lies a fixed
/// distance from row z + rows_between of a.
inline bool rows_overlap_at_one_step(Extent a, Extent b) noexcept {
  const auto distance = static_cast<std::int64_t>(static_cast<std::intptr_t>(b.begin - a.begin));
  const std::int64_t rows_between = distance / a.step - (distance % a.step < 0 ? 1 : 0);
  const std::int64_t beside = distance - rows_between * a.step;
  const auto meet = [&](std::int64_t shift) {
    return std::max<std::int64_t>(0, -shift) < std::min(b.rows, a.rows - shift);
  };
  return (beside < a.row_bytes && meet(rows_between)) ||
         (beside + b.row_bytes > a.step && meet(rows_between + 1));
}
inline bool rows_overlap(Extent a, Extent b) noexcept {
  std::int64_t y = 0;
  std::int64_t z = 0;
  while (y < a.rows && z < b.rows) {
    const std::uintptr_t of_a = a.begin + static_cast<std::uintptr_t>(y * a.step);
    const std::uintptr_t of_b = b.begin + static_cast<std::uintptr_t>(z * b.step);
    if (of_a + static_cast<std::uintptr_t>(a.row_bytes) <= of_b) {
      ++y;
    } else if (of_b + static_cast<std::uintptr_t>(b.row_bytes) <= of_a) {
      ++z;
    } else {
      return true;
    }
  }
  return false;
}

/// At least the bytes from a view's first to its last.
template <class AnyView>
[[gnu::always_inline]] inline std::uint64_t reach(AnyView view) noexcept {
  return static_cast<std::uint64_t>(view.height()) * static_cast<std::uint64_t>(view.step());
}
/// Whether one lies wholly before the other, which is nearly always so: the distance from b to a is at least b's
/// reach and, the other way round the circle of addresses, at least a's.
template <class A, class B>
[[gnu::always_inline]] inline bool far_apart(A a, B b) noexcept {
  const std::uint64_t distance = std::uint64_t{reinterpret_cast<std::uintptr_t>(a.data())} -
                                 reinterpret_cast<std::uintptr_t>(b.data());
  return distance - reach(b) <= 0 - (reach(a) + reach(b));
}

/// Whether two lie wholly before one another, or side by side in one picture: a whole number of steps aside, their
/// rows do not meet.
template <class A, class B>
[[gnu::always_inline]] inline bool side_by_side(A a, B b) noexcept {
  if (far_apart(a, b)) return true;
  if (a.step() != b.step()) return false;
  const std::uint64_t distance = std::uint64_t{reinterpret_cast<std::uintptr_t>(a.data())} -
                                 reinterpret_cast<std::uintptr_t>(b.data());
  const auto step = static_cast<std::uint64_t>(a.step());
  const std::uint64_t aside = (distance + reach(a)) % step;
  return aside >= static_cast<std::uint64_t>(b.row_bytes()) &&
         aside + static_cast<std::uint64_t>(a.row_bytes()) <= step;
}

/// Whether two images, neither empty, share a byte.
template <class A, class B>
bool overlap(A a, B b) noexcept {
  if (far_apart(a, b)) return false;
  return a.step() == b.step() ? rows_overlap_at_one_step(Extent(a), Extent(b))
                              : rows_overlap(Extent(a), Extent(b));
}

/// Whether any two of several do.
template <class First, class... Others>
bool any_overlap(First first, Others... others) noexcept {
  if constexpr (sizeof...(others) == 0) {
    return false;
  } else {
    return (overlap(first, others) || ...) || any_overlap(others...);
  }
}

/// Whether they are one and the same image.
template <class A, class B>
[[gnu::always_inline]] inline bool identical(A a, B b) noexcept {
  return static_cast<const void*>(a.data()) == static_cast<const void*>(b.data()) &&
         a.step() == b.step() && a.row_bytes() == b.row_bytes() && a.height() == b.height();
}

/// An output apart from all inputs.
template <class Output, class... Inputs>
Outcome check_apart(Output output, Inputs... inputs) noexcept {
  return (overlap(output, inputs) || ...) ? kOverlap : Outcome{};
}

/// An output that is one of the inputs, or apart from it.
template <class Output, class... Inputs>
Outcome check_in_place(Output output, Inputs... inputs) noexcept {
  return ((!identical(output, inputs) && overlap(output, inputs)) || ...) ? kOverlap : Outcome{};
}

/// Channels count from 0 here, from 1 in C.
constexpr Outcome check_channel(int channel, int channels) noexcept {
  return channel < 0 || channel >= channels ? kNoChannel : Outcome{};
}

}  // namespace nuqi::detail

#endif
