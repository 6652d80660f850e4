// Angles of vectors: a quadratic on the first eighth of the circle, mirrored into the others.
#include "arith/fast_arctan.h"
#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

constexpr float kConstant = -0.14050041139125824f;
constexpr float kLinear = 61.09419631958008f;
constexpr float kQuadratic = -15.813189506530762f;
constexpr float kSmallestDivisor = 9.99999993922529e-09f;  // keeps 0 / 0 at 0

// `whole` - a where the mask is set.
NUQI_INLINE Px<float> mirror(const Mask<float, 16>& mask, float whole, const Px<float>& a) {
  return select(mask, broadcast(whole) - a, a);
}

// min and max take the second operand where either is NaN: the contract gives the order.
NUQI_INLINE Px<float> angle_of(const Px<float>& y, const Px<float>& x) {
  const auto ax = abs(x), ay = abs(y);
  const auto t = min(ax, ay) / max(max(ax, ay), broadcast(kSmallestDivisor));
  const auto a = (broadcast(kQuadratic) * t + broadcast(kLinear)) * t + broadcast(kConstant);
  const Px<float> zero = {};
  return mirror(y < zero, 360, mirror(x < zero, 180, mirror(ax < ay, 90, a)));
}

void fast_arctan(const FastArctanJob& job) {
  for_blocks(job.length, [&](int64_t i, auto part) NUQI_FORCED {
    store(job.angle + i, angle_of(load(job.y + i, part), load(job.x + i, part)), part);
  });
}

}  // namespace

const FastArctanKernels fast_arctan_kernels = {fast_arctan};

}  // namespace nuqi::NUQI_ISA
