// The images and the buffer of a call of template matching.
#pragma once

#include <gtest/gtest.h>

#include "match/match_template_members.h"
#include "support/agreement.h"

namespace nuqi::test {

struct Shape {
  RoiSize src, tpl;
  Wall wall = Wall::after;
  std::array<int, Case::kMostImages> padding = {};
};
inline std::ostream& operator<<(std::ostream& out, const Shape& s) {
  return out << s.tpl.width << "x" << s.tpl.height << " in " << Case{s.src, s.wall, s.padding};
}

inline RoiSize result_size(RoiSize src, RoiSize tpl) {
  return {src.width - tpl.width + 1, src.height - tpl.height + 1};
}
// The shape for so many results.
inline Shape shape_for(RoiSize dst, RoiSize tpl) {
  return {{dst.width + tpl.width - 1, dst.height + tpl.height - 1}, tpl};
}

inline int32_t buffer_size(MatchQuery query, RoiSize src, RoiSize tpl, int32_t type) {
  int32_t size = 0;
  EXPECT_EQ(query(src, tpl, type, &size), StatusOk);
  return size;
}

// The images of one call, and a buffer of the queried size that starts `odd` bytes behind another address
// and ends, or starts, at a wall.
template <class T>
struct Fixture {
  Fixture(const MatchMember<T>& member, const Shape& s, int odd = 0)
      : shape(s),
        src("source", Case{s.src, s.wall, s.padding}, 0),
        tpl("template", Case{s.tpl, s.wall, s.padding}, 1),
        dst("result", Case{result_size(s.src, s.tpl), s.wall, s.padding}, 2),
        buffer(static_cast<size_t>(buffer_size(member.query, s.src, s.tpl, kMatchType<T>)) + odd,
               s.wall, "buffer"),
        odd(odd) {
    std::memset(buffer.data(), 0xA5, buffer.size());
  }
  MatchArgs<T> args() {
    return {src.data(), src.step(), shape.src,  tpl.data(),         tpl.step(),
            shape.tpl,  dst.data(), dst.step(), buffer.data() + odd};
  }
  std::vector<float> expected(const MatchMember<T>& member) {
    return match_reference(member.measure, src.pixels(), shape.src, tpl.pixels(), shape.tpl);
  }
  std::vector<uint8_t> written() {
    auto all = dst.all_bytes();
    all.insert(all.end(), buffer.data(), buffer.data() + buffer.size());
    return all;
  }
  void expect_agreement(const MatchMember<T>& member) {
    SCOPED_TRACE(testing::Message() << member.name << " " << shape);
    const Running now(member.name, shape.src);
    ASSERT_EQ(member.call(args()), StatusOk);
    ASSERT_TRUE(same_bits(expected(member), dst.pixels()));
    ASSERT_TRUE(dst.padding_untouched());
    for (int i = 0; i < odd; ++i) ASSERT_EQ(buffer.data()[i], 0xA5) << "before the buffer";
  }

  Shape shape;
  WalledImage<T> src, tpl;
  WalledImage<float> dst;
  WalledBytes buffer;
  int odd;
};

}  // namespace nuqi::test
