// Tests of the choice of instruction set.
#include "core/isa.h"

#include <gtest/gtest.h>

#include <atomic>
#include <iterator>
#include <thread>

#include "arith/accumulate.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

class IsaChoice : public EveryIsa {};
NUQI_FOR_EVERY_ISA(IsaChoice);

TEST_P(IsaChoice, TheLevelAskedForIsTheOneThatRuns) {
  EXPECT_EQ(isa(), GetParam());
  const AccumulateKernels* expected = &base::accumulate_kernels;
  if constexpr (NUQI_LEVELS >= 2)
    if (GetParam() == Isa::avx2) expected = &avx2::accumulate_kernels;
  if constexpr (NUQI_LEVELS >= 3)
    if (GetParam() == Isa::avx512) expected = &avx512::accumulate_kernels;
  EXPECT_EQ(&accumulate_kernels(), expected);
}

TEST(Isa, RefusesWhatTheMachineLacks) {
  EXPECT_EQ(isa(), best_isa());
  EXPECT_FALSE(force_isa(static_cast<Isa>(0)));
  EXPECT_FALSE(force_isa(static_cast<Isa>(std::size(kEveryIsa) + 1)));
  EXPECT_EQ(isa(), best_isa());
}

}  // namespace
}  // namespace nuqi::test
