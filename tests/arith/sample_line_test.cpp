// Tests of the line samplers. They have no kernels: one instruction set is enough.
#include <gtest/gtest.h>

#include <cstring>

#include "arith/sample_line_members.h"
#include "arith/sample_line_reference.h"
#include "support/comparison.h"
#include "support/shapes.h"

namespace nuqi::test {
namespace {

// An image at a wall, and room for a line's samples at another.
template <class T>
struct Fixture {
  Fixture(int count, const Case& c) : channels(count), roi(c.roi), src("source", c, 0, channels) {
    Random random(static_cast<uint64_t>(roi.width) * 100 + roi.height);
    src.fill([&] { return random.value<T>(); });
  }
  std::vector<T> expected(PixelPoint start, PixelPoint end) {
    const std::vector<T> pixels = src.pixels();
    std::vector<T> samples;
    for (PixelPoint at : line_reference(start, end))
      for (int c = 0; c < channels; ++c)
        samples.push_back(pixels[(int64_t{at.y} * roi.width + at.x) * channels + c]);
    return samples;
  }
  void expect_agreement(const SampleLineMember<T>& member, PixelPoint start, PixelPoint end) {
    const std::vector<T> wanted = expected(start, end);
    const Running now(member.name, roi);
    WalledBytes dst(wanted.size() * sizeof(T), Wall::after, "destination");
    T* out = reinterpret_cast<T*>(dst.data());
    ASSERT_EQ(member.call(src.data(), src.step(), roi, out, start, end),
              static_cast<int32_t>(wanted.size()) / channels);
    ASSERT_TRUE(same_bits(wanted, std::vector<T>(out, out + wanted.size())))
        << member.name << " (" << start.x << ", " << start.y << ") to (" << end.x << ", " << end.y
        << ")";
  }

  int channels;
  RoiSize roi;
  WalledImage<T> src;
};

TEST(SampleLine, AgreesWithTheReferenceInEveryDirection) {
  for_each_sample_line([]<class T>(const SampleLineMember<T>& member) {
    Case cases[] = {{{19, 15}, Wall::after, {3}}, {{19, 15}, Wall::before}};
    if (far_rows_fit()) cases[0].padding[0] = kFarApart;
    for (const Case& c : cases) {
      Fixture<T> fixture(member.channels, c);
      for (PixelPoint start : {PixelPoint{0, 0}, PixelPoint{18, 14}, PixelPoint{9, 7}})
        for (int x = 0; x < 19; ++x)
          for (int y = 0; y < 15; ++y) fixture.expect_agreement(member, start, {x, y});
    }
    Fixture<T> wide(member.channels, {{1200, 3}, Wall::after, {kWallsBetween}});
    for (int x : {1, 2, 3, 1198, 1199}) wide.expect_agreement(member, {0, 2}, {x, 0});
  });
}

// Every slope of lines up to 300 long, the exact halves among them, by where the samples lie.
TEST(SampleLine, EverySlope) {
  constexpr int kSize = 301;
  std::vector<float> image(kSize * kSize), samples(kSize);
  for (int i = 0; i < kSize * kSize; ++i) image[i] = static_cast<float>(i);
  for (int major = 0; major < kSize; ++major) {
    for (int minor = 0; minor <= major; minor += 1 + major / 64) {
      for (PixelPoint end : {PixelPoint{major, minor}, PixelPoint{minor, major}}) {
        const std::vector<PixelPoint> points = line_reference({0, 0}, end);
        ASSERT_EQ(nuqiSampleLine_32f_C1R(image.data(), kSize * 4, {kSize, kSize}, samples.data(),
                                         {0, 0}, end),
                  major + 1);
        for (int k = 0; k <= major; ++k)
          ASSERT_EQ(samples[k], points[k].y * kSize + points[k].x) << end.x << ", " << end.y;
      }
    }
  }
}

// Millions of samples with one step aside: what a slope loses in 64 bits must not add up to anything.
TEST(SampleLine, LongLine) {
  constexpr int kHeight = 1 << 22;
  std::vector<uint8_t> image(2 * kHeight), samples(kHeight);
  for (uint32_t i = 0; i < 2 * kHeight; ++i) image[i] = static_cast<uint8_t>(i * 167 >> 3);
  const PixelPoint end = {1, kHeight - 1};
  ASSERT_EQ(nuqiSampleLine_8u_C1R(image.data(), 2, {2, kHeight}, samples.data(), {0, 0}, end),
            kHeight);
  const std::vector<PixelPoint> points = line_reference({0, 0}, end);
  for (int k = 0; k < kHeight; ++k)
    ASSERT_EQ(samples[k], image[static_cast<size_t>(points[k].y) * 2 + points[k].x]) << k;
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(SampleLineStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_sample_line([]<class T>(const SampleLineMember<T>& member) {
    constexpr int e = sizeof(T);
    const int row = 10 * member.channels * e;
    struct Args {
      const T* src;
      int32_t step;
      RoiSize roi;
      T* dst;
      PixelPoint start, end;
    };
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      Fixture<T> fixture(member.channels, {{10, 6}, Wall::after, {1}});
      std::vector<T> dst(30, T{7});
      Args a = {fixture.src.data(), fixture.src.step(), fixture.roi, dst.data(), {0, 0}, {9, 5}};
      spoil(a);
      EXPECT_EQ(member.call(a.src, a.step, a.roi, a.dst, a.start, a.end), status)
          << member.name << ": " << what;
      EXPECT_EQ(dst, std::vector<T>(30, T{7})) << member.name << ": " << what;
    };
    expect("null destination, width 0", StatusNullPtr,
           [](Args& a) { a.dst = nullptr, a.roi.width = 0; });
    expect("null source, height 0", StatusNullPtr,
           [](Args& a) { a.src = nullptr, a.roi.height = 0; });
    // Oddity: an uneven step of a 32f image is a null pointer, and comes before the sizes.
    expect("uneven step, width 0", e == 4 ? StatusNullPtr : StatusBadSize,
           [&](Args& a) { a.step = row + 2, a.roi.width = 0; });
    expect("width 0, short step", StatusBadSize, [](Args& a) { a.roi.width = 0, a.step = -4; });
    expect("negative height, point outside", StatusBadSize,
           [](Args& a) { a.roi.height = -1, a.end.x = 10; });
    expect("short step, point outside", StatusBadStep,
           [&](Args& a) { a.step = row - e, a.end.x = 10; });
    expect("a width whose row overflows an int", StatusBadStep, [&](Args& a) {
      const int pixel = member.channels * e;
      a.roi.width = pixel == 1 ? INT32_MAX : INT32_MAX / pixel + 1, a.step = INT32_MAX - 3;
    });
    for (int outside : {INT32_MIN, -1, 10, INT32_MAX}) {
      expect("start beside", StatusBadArg, [&](Args& a) { a.start.x = outside; });
      expect("end beside", StatusBadArg, [&](Args& a) { a.end.x = outside; });
    }
    for (int outside : {INT32_MIN, -1, 6, INT32_MAX}) {
      expect("start above or below", StatusBadArg, [&](Args& a) { a.start.y = outside; });
      expect("end above or below", StatusBadArg, [&](Args& a) { a.end.y = outside; });
    }
  });
}

TEST(SampleLine, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_sample_line([&]<class T>(const SampleLineMember<T>& member) {
    Fixture<T> fixture(member.channels, {{40, 30}});
    for (PixelPoint end :
         {PixelPoint{0, 0}, PixelPoint{39, 29}, PixelPoint{39, 7}, PixelPoint{3, 29}}) {
      std::vector<T> samples(40 * member.channels);
      hash.add(static_cast<uint64_t>(member.call(fixture.src.data(), fixture.src.step(),
                                                 fixture.roi, samples.data(), {5, 3}, end)));
      hash.add(samples);
    }
  });
  EXPECT_TRUE(same_hash(0x722E714D4FECD9C9, hash));
}

}  // namespace
}  // namespace nuqi::test
