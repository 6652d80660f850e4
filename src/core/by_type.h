// One kernel table per element type.
#pragma once

namespace nuqi {

// Holds a KernelsOf<T> for each of the types, in this order. Asking for another type does not compile.
template <template <class> class KernelsOf, class... Types>
struct ByType : KernelsOf<Types>... {
  // Forced inline, since kernels call it: see row_of.
  template <class T>
  __attribute__((always_inline)) constexpr const KernelsOf<T>& of_type() const {
    return *this;
  }
};

}  // namespace nuqi
