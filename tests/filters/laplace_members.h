// The three Laplace filters behind one argument list.
#pragma once

#include "support/stripe_members.h"

namespace nuqi::test {

// Calls visit(member) with each.
template <class Visit>
void for_each_laplace(const Visit& visit) {
  visit(NUQI_STRIPE_MEMBER(nuqiLaplace_8u16s_C1R, uint8_t, int16_t));
  visit(NUQI_STRIPE_MEMBER(nuqiLaplace_8s16s_C1R, int8_t, int16_t));
  visit(NUQI_STRIPE_MEMBER(nuqiLaplace_32f_C1R, float, float));
}

}  // namespace nuqi::test
