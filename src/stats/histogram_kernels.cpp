// The places of pixels of two channels in a small table of counters.
#include "core/simd/lookup.h"
#include "core/simd/memory.h"
#include "stats/histogram.h"

namespace nuqi::NUQI_ISA {
namespace {

#if NUQI_LEVEL == 2

void find_places(const uint8_t* pixels, int32_t count, const JointBins& bins, uint16_t* places) {
  const auto columns = load_table(bins.columns), rows = load_table(bins.rows);
  const int8_t row_length = bins.row_length;
  for_blocks<64>(int64_t{2} * count, [&](int64_t at, auto part) NUQI_FORCED {
    const auto found = look_up_pairs(columns, rows, load<64>(pixels + at, part));
    store(places + at / 2, add_multiple(found, row_length));
  });
}

#endif

}  // namespace

#if NUQI_LEVEL == 2
const HistogramKernels histogram_kernels = {find_places};
#else
const HistogramKernels histogram_kernels = {nullptr};
#endif

}  // namespace nuqi::NUQI_ISA
