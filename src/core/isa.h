// The instruction set that kernels are chosen for.
#pragma once

#include <cstdint>

namespace nuqi {

enum class Isa : uint8_t { base = 1, avx2, avx512 };

// The best level that this build holds and this machine runs.
Isa best_isa();

// The level in use: the best one, unless a test, a benchmark or the in-tree program forced another.
Isa isa();

// Uses `level` from now on; false, and nothing changes, where the machine or the build lacks it.
// Internal: the shared object does not export it.
bool force_isa(Isa level);

// "avx512", "avx2"; the baseline is named after what it is compiled for: "sse2", "neon" or "plain".
const char* name_of(Isa level);

}  // namespace nuqi

// A family's kernel table exists once per level. NUQI_KERNEL_TABLES(Table, name) declares them all,
// and `name()`, which gives the one for the level in use. NUQI_LEVELS is set by the build.
#if NUQI_LEVELS >= 3
#define NUQI_KERNEL_TABLES(Table, name)      \
  namespace base {                           \
  extern const Table name;                   \
  }                                          \
  namespace avx2 {                           \
  extern const Table name;                   \
  }                                          \
  namespace avx512 {                         \
  extern const Table name;                   \
  }                                          \
  inline const Table& name() {               \
    switch (isa()) {                         \
      case Isa::avx512: return avx512::name; \
      case Isa::avx2: return avx2::name;     \
      default: return base::name;            \
    }                                        \
  }
#elif NUQI_LEVELS == 2
#define NUQI_KERNEL_TABLES(Table, name) \
  namespace base {                      \
  extern const Table name;              \
  }                                     \
  namespace avx2 {                      \
  extern const Table name;              \
  }                                     \
  inline const Table& name() { return isa() == Isa::avx2 ? avx2::name : base::name; }
#else
#define NUQI_KERNEL_TABLES(Table, name) \
  namespace base {                      \
  extern const Table name;              \
  }                                     \
  inline const Table& name() { return base::name; }
#endif
