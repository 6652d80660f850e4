// What the plain loops share. Compiled by each compiler into a namespace of its own.
#pragma once

#include <cstdint>

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

template <class T>
T* row(T* data, int32_t step, int y) {
  return reinterpret_cast<T*>(reinterpret_cast<uintptr_t>(data) + static_cast<intptr_t>(y) * step);
}

}  // namespace
}  // namespace nuqi::bench::PLAIN_COMPILER
