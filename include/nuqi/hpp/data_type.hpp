/// How C functions are told an element type at run time.
#ifndef NUQI_HPP_DATA_TYPE_HPP
#define NUQI_HPP_DATA_TYPE_HPP

#include <cstdint>
#include <type_traits>

namespace nuqi::detail {

template <class T>
constexpr std::int32_t data_type() noexcept {
  if constexpr (std::is_same_v<T, std::uint8_t>) return 1;
  if constexpr (std::is_same_v<T, std::int8_t>) return 2;
  if constexpr (std::is_same_v<T, float>) return 9;
  return 0;
}
template <class T>
inline constexpr std::int32_t kDataType = data_type<T>();

}  // namespace nuqi::detail

#endif
