// The places of pixels of two channels in a small table of counters.
#include "core/simd/lookup.h"
#include "core/simd/memory.h"
#include "stats/histogram.h"

namespace nuqi::NUQI_ISA {
namespace {

// A template, so that machines without such permutations compile nothing of it.
template <class V>
void find_places(const uint8_t* pixels, int32_t count, const JointBins& bins, uint16_t* places) {
  const ByteTable<V> columns(bins.columns), rows(bins.rows);
  const int8_t row_length = bins.row_length;
  for_blocks<V::kLanes>(int64_t{2} * count, [&](int64_t at, auto part) NUQI_FORCED {
    const auto found = look_up_pairs(columns, rows, load<V::kLanes>(pixels + at, part));
    store(places + at / 2, add_multiple(found, row_length));
  });
}

template <class M, bool = M::kPermutesBytes>
constexpr HistogramKernels kKernels = {find_places<Vec<uint8_t, M::kRegBytes>>};
template <class M>
constexpr HistogramKernels kKernels<M, false> = {nullptr};

}  // namespace

const HistogramKernels histogram_kernels = kKernels<Machine>;

}  // namespace nuqi::NUQI_ISA
