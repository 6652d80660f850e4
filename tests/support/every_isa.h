// A test parameter for every instruction set; those that the machine lacks are printed as skipped.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "core/isa.h"

namespace nuqi {
inline void PrintTo(Isa level, std::ostream* out) { *out << name_of(level); }
}  // namespace nuqi

namespace nuqi::test {

class EveryIsa : public testing::TestWithParam<Isa> {
 protected:
  void SetUp() override {
    if (!force_isa(GetParam())) GTEST_SKIP() << "not on this machine, or not in this build";
  }
  void TearDown() override { force_isa(best_isa()); }
};

inline std::string isa_name(const testing::TestParamInfo<Isa>& info) { return name_of(info.param); }

}  // namespace nuqi::test

#define NUQI_FOR_EVERY_ISA(Suite) \
  INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(nuqi::kEveryIsa), nuqi::test::isa_name)
