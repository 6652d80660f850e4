// What the tests of families that write one image share. Their fixtures hold the images of a call:
// args() for a member's call, expected(member) and output(), the image that it writes.
#pragma once

#include "support/comparison.h"
#include "support/crash.h"
#include "support/shapes.h"

namespace nuqi::test {

template <class Member, class Fixture>
void expect_agreement(const Member& member, Fixture& fixture) {
  const auto expected = fixture.expected(member);
  const auto args = fixture.args();
  const Running now(member.name, args.roi);
  ASSERT_EQ(member.call(args), StatusOk);
  ASSERT_TRUE(same_bits(expected, fixture.output().pixels()));
  ASSERT_TRUE(fixture.output().padding_untouched());
}

// The status of a call with spoilt arguments, which writes nothing.
template <class Member, class Fixture, class Spoil>
void expect_status(const Member& member, Fixture&& fixture, const char* what, StatusCode status,
                   const Spoil& spoil) {
  const auto before = fixture.output().all_bytes();
  auto args = fixture.args();
  spoil(args);
  const Running now(member.name, args.roi);
  EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
  EXPECT_EQ(before, fixture.output().all_bytes()) << member.name << ": " << what;
}

}  // namespace nuqi::test
