// The instruction set that kernels are chosen for.
#pragma once

#include <cstdint>

namespace nuqi {

// The levels, lowest first: cmake/levels.cmake holds their flags in the same order.
enum class Isa : uint8_t { base = 1, avx2, avx512 };
constexpr Isa kEveryIsa[] = {Isa::base, Isa::avx2, Isa::avx512};

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

// A family's kernel table exists once per level that is built: the first NUQI_LEVELS of them, which the
// build sets. NUQI_KERNEL_TABLES(Table, name) declares the tables, and `name()`, which gives the one for
// the level in use. Levels that are not built are named in discarded branches alone, which need no
// definition.
#define NUQI_KERNEL_TABLES(Table, name)                    \
  namespace base {                                         \
  extern const Table name;                                 \
  }                                                        \
  namespace avx2 {                                         \
  extern const Table name;                                 \
  }                                                        \
  namespace avx512 {                                       \
  extern const Table name;                                 \
  }                                                        \
  inline const Table& name() {                             \
    const Isa level = NUQI_LEVELS > 1 ? isa() : Isa::base; \
    if constexpr (NUQI_LEVELS >= 3)                        \
      if (level == Isa::avx512) return avx512::name;       \
    if constexpr (NUQI_LEVELS >= 2)                        \
      if (level == Isa::avx2) return avx2::name;           \
    return base::name;                                     \
  }
