// The square root of a double, correctly rounded; NaN below zero.
#pragma once

namespace nuqi {

// Without optimisation GCC calls sqrt(), which would make the library need libm. Forced inline, since
// kernels call it: see row_of.
__attribute__((always_inline)) inline double square_root(double x) {
  double root;
#if defined(__SSE2__)
  __asm__("sqrtsd %1, %0" : "=x"(root) : "x"(x));
#elif defined(__aarch64__)
  __asm__("fsqrt %d0, %d1" : "=w"(root) : "w"(x));
#else
  root = __builtin_sqrt(x);
#endif
  return root;
}

}  // namespace nuqi
