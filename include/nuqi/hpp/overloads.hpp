/// How an operation finds its C function: by element type and number of channels, at compile time.
#ifndef NUQI_HPP_OVERLOADS_HPP
#define NUQI_HPP_OVERLOADS_HPP

#include <nuqi/hpp/image.hpp>

#include <type_traits>

namespace nuqi::detail {

/// One C function, for elements T and a number of channels.
template <class T, int Channels, class Function>
struct Overload {
  Function* function;
};

template <class T, int Channels, class Function>
constexpr Overload<T, Channels, Function> fn(Function* function) noexcept {
  return {function};
}

/// The C functions of one operation, a line each:
///
///     inline constexpr auto kAbsDiff = overloads(fn<uint8_t, 1>(nuqiAbsDiff_8u_C1R),
///                                                fn<float, 1>(nuqiAbsDiff_32f_C1R));
template <class... Each>
struct Overloads : Each... {};

template <class... Each>
constexpr Overloads<Each...> overloads(Each... each) noexcept {
  return {each...};
}

/// Where there is none.
inline constexpr Overloads<> kNoFunctions{};

template <class T, int Channels, class Function>
constexpr Function* pick(const Overload<T, Channels, Function>& one) noexcept {
  return one.function;
}
template <class T, int Channels, class Function>
std::true_type holds(const Overload<T, Channels, Function>*);
template <class T, int Channels>
std::false_type holds(...);

/// Whether a table has a function for T and Channels.
template <class T, int Channels, class Table>
inline constexpr bool kHolds =
    decltype(holds<T, Channels>(static_cast<const Table*>(nullptr)))::value;

/// The function for T and Channels; a sentence where there is none.
template <class T, int Channels, class Table>
constexpr auto find(const Table& table) noexcept {
  static_assert(kHolds<T, Channels, Table>,
                "nuqi: this operation does not exist for this element type and number of channels");
  if constexpr (kHolds<T, Channels, Table>) return pick<T, Channels>(table);
}

/// The function for an image of any kind.
template <class AnyImage, class Table>
constexpr auto find_for(const Table& table) noexcept {
  return find<ElementOf<const AnyImage>, kChannelsOf<const AnyImage>>(table);
}

}  // namespace nuqi::detail

#endif
