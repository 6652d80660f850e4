// Tests of the corner functions.
#include <gtest/gtest.h>

#include <limits>

#include "features/eigen_members.h"
#include "features/eigen_reference.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/heap.h"
#include "support/shapes.h"
#include "support/stripes.h"

namespace nuqi::test {
namespace {

constexpr int kSizes[] = {3, 5, 7};

int32_t buffer_size(int32_t width, int aperture, int block) {
  int32_t size = 0;
  EXPECT_EQ(nuqiEigenValsVecsGetSize(width, aperture, block, &size), StatusOk);
  return size;
}

template <class T>
std::vector<float> expected(const EigenMember<T>& member, const std::vector<T>& picture,
                            RoiSize roi, int aperture, int block) {
  const EigenSums<T> sums(picture, roi, aperture, member.window(aperture, block));
  EXPECT_EQ(sums.failed, 0);
  const double scale = eigen_scale(aperture, block);
  std::vector<float> out;
  for (size_t i = 0; i < picture.size(); ++i)
    (member.values == 1 ? push_minimum : push_vectors)(out, sums.xx[i], sums.xy[i], sums.yy[i],
                                                       scale);
  return out;
}

// The images of one call, and a buffer of the queried size that ends, or starts, at a wall: at an odd
// address with `odd`.
template <class T>
struct Fixture {
  Fixture(const EigenMember<T>& member, const Case& c, int aperture, int block, int odd = 0)
      : roi(c.roi),
        aperture(aperture),
        block(block),
        odd(odd),
        src("source", c, 0),
        dst("destination", c, 1, member.values),
        buffer(static_cast<size_t>(buffer_size(roi.width, aperture, block)) + odd, c.wall) {
    std::memset(buffer.data(), 0xA5, buffer.size());
  }
  EigenArgs<T> args() {
    return {src.data(), src.step(), dst.data(), dst.step(),
            roi,        aperture,   block,      buffer.data() + odd};
  }

  RoiSize roi;
  int aperture, block, odd;
  WalledImage<T> src;
  WalledImage<float> dst;
  WalledBytes buffer;
};

template <class T, class Generate>
void expect_agreement(const EigenMember<T>& member, const Case& c, int aperture, int block,
                      const Generate& generate) {
  SCOPED_TRACE(testing::Message() << member.name << " aperture " << aperture << " block " << block);
  Fixture<T> fixture(member, c, aperture, block, c.roi.height % 4);
  fixture.src.fill(generate);
  const Running now(member.name, c.roi);
  ASSERT_EQ(member.call(fixture.args()), StatusOk);
  ASSERT_TRUE(same_bits(expected(member, fixture.src.pixels(), c.roi, aperture, block),
                        fixture.dst.pixels()));
  ASSERT_TRUE(fixture.dst.padding_untouched());
}

// Bytes: extremes as often as noise. Floats: as bright as bytes; or of magnitudes that differ widely.
template <class T>
T pixel(Random& random, bool wide) {
  if constexpr (sizeof(T) == 1)
    return wide ? random.integer<T>() : static_cast<T>(random.between(0, 40));
  else
    return random.plain_float() * (wide ? random.one_of(std::array<float, 2>{1.0f, 3e3f}) : 1.0f);
}

class Eigen : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Eigen);

TEST_P(Eigen, EqualsTheFiltersThatItIsMadeOf) {
  std::vector<RoiSize> more = {{255, 2}, {256, 17}, {257, 16}, {272, 5}, {515, 18}, {33, 49}};
  for (int height = 6; height <= 36; height += 3) more.push_back({height % 19 + 1, height});
  for_each_eigen([&]<class T>(const EigenMember<T>& member) {
    Random random(1);
    int number = 0;
    for_each_case(
        member.name, 2,
        [&](const Case& c) {
          const int sizes = number++ % 9;
          expect_agreement(member, c, kSizes[sizes / 3], kSizes[sizes % 3],
                           [&] { return pixel<T>(random, c.roi.width % 2 == 0); });
        },
        more);
  });
}

// Every shape that is lower or narrower than a window, with every size.
TEST_P(Eigen, PicturesSmallerThanAWindow) {
  for_each_eigen([]<class T>(const EigenMember<T>& member) {
    Random random(2);
    for (int aperture : kSizes)
      for (int block : kSizes)
        for (int height = 1; height <= 8; ++height)
          for (int width : {1, 2, 3, 4, 7, 8})
            expect_agreement(member, {{width, height}}, aperture, block,
                             [&] { return pixel<T>(random, true); });
  });
}

// What a bright band leaves in the sums stays in the rows below it, and NaN stays wherever the filters
// leave it.
TEST_P(Eigen, ResiduesAndNanStay) {
  for (float bright : {1e12f, std::numeric_limits<float>::infinity(), std::nanf("")})
    for_each_eigen([&]<class T>(const EigenMember<T>& member) {
      if constexpr (sizeof(T) == 4) {
        for (int block : kSizes) {
          Random random(3);
          int i = 0;
          expect_agreement(member, {{70, 60}}, 3, block, [&] {
            const int x = i % 70, y = i++ / 70;
            return y == 20 && x > 40 && x < 50 ? bright : random.plain_float();
          });
        }
      }
    });
  for_each_eigen([]<class T>(const EigenMember<T>& member) {
    if constexpr (sizeof(T) == 4) {
      Random random(4);
      for (int width : {5, 33, 300})
        expect_agreement(member, {{width, 30}}, 5, 3, [&] {
          return random.between(0, 200) == 0 ? random.any_float() : random.plain_float();
        });
    }
  });
}

// No state outlives a call: nothing is asked of the heap, so that a million calls take no memory.
TEST_P(Eigen, LeavesTheHeapAlone) {
  for_each_eigen([]<class T>(const EigenMember<T>& member) {
    Fixture<T> fixture(member, {{40, 30}}, 3, 5);
    fixture.src.fill([random = Random(5)]() mutable { return pixel<T>(random, true); });
    const auto result = expected(member, fixture.src.pixels(), fixture.roi, 3, 5);
    {
      const WatchedHeap heap(true);
      ASSERT_EQ(member.call(fixture.args()), StatusOk) << member.name;
      ASSERT_EQ(heap.refused, 0) << member.name;
    }
    EXPECT_TRUE(same_bits(result, fixture.dst.pixels()));
  });
}

// A pattern whose derivatives along x are those of `across`, along y those of `down`, and whose sums of
// mixed products are small.
std::vector<uint8_t> chequered(int across, int down) {
  std::vector<uint8_t> picture;
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 40; ++x)
      picture.push_back(static_cast<uint8_t>((x / 2 % 2) * across + (y / 2 % 2) * down));
  return picture;
}

std::vector<float> vectors_at_20(const std::vector<uint8_t>& picture) {
  std::vector<float> dst(40 * 40 * 6);
  std::vector<uint8_t> buffer(96 * 40);
  EXPECT_EQ(nuqiEigenValsVecs_8u32f_C1R(picture.data(), 40, dst.data(), 960, {40, 40}, 3, 5,
                                        buffer.data()),
            StatusOk);
  const auto at = dst.begin() + (20 * 40 + 20) * 6;
  return {at, at + 6};
}

// Oddity.
TEST_P(Eigen, PracticallyDiagonalIsNotSorted) {
  const float small = 16 * 25 * 40 * 40 * static_cast<float>(eigen_scale(3, 5));
  const float large = 16 * 25 * 200 * 200 * static_cast<float>(eigen_scale(3, 5));
  EXPECT_EQ(vectors_at_20(chequered(200, 40)), (std::vector<float>{large, small, 1, 0, 0, 1}));
  EXPECT_EQ(vectors_at_20(chequered(40, 200)), (std::vector<float>{small, large, 1, 0, 0, 1}));
  EXPECT_EQ(vectors_at_20(chequered(200, 10)), std::vector<float>(6)) << "an edge";
  EXPECT_EQ(vectors_at_20(chequered(0, 0)), std::vector<float>(6));
}

// Oddity: the sums of bytes' minima are over the aperture, their scale is that of the block.
TEST_P(Eigen, MinimaOfBytesSumOverTheAperture) {
  const std::vector<uint8_t> picture = chequered(200, 40);
  const std::vector<float> floats(picture.begin(), picture.end());
  std::vector<uint8_t> buffer(96 * 40);
  std::vector<float> bytes3(1600), bytes5(1600), floats3(1600), floats5(1600);
  const RoiSize roi = {40, 40};
  const auto of_bytes = [&](std::vector<float>& out, int block) {
    nuqiMinEigenVal_8u32f_C1R(picture.data(), 40, out.data(), 160, roi, 3, block, buffer.data());
  };
  const auto of_floats = [&](std::vector<float>& out, int block) {
    nuqiMinEigenVal_32f_C1R(floats.data(), 160, out.data(), 160, roi, 3, block, buffer.data());
  };
  of_bytes(bytes3, 3), of_bytes(bytes5, 5), of_floats(floats3, 3), of_floats(floats5, 5);
  EXPECT_TRUE(same_bits(bytes3, floats3));
  EXPECT_FLOAT_EQ(bytes5[820], bytes3[820] * 9 / 25);
  EXPECT_GT(floats5[820], 2 * bytes5[820]);
}

// Oddity: its third test holds a product against a single value.
TEST_P(Eigen, VectorsOfFloatsIn0To1AreZero) {
  std::vector<float> picture(1600), dst(9600);
  std::vector<uint8_t> buffer(96 * 40);
  const auto zeros = [&](float scale) {
    Random random(6);
    for (float& value : picture) value = static_cast<float>(random.between(0, 255)) * scale;
    nuqiEigenValsVecs_32f_C1R(picture.data(), 160, dst.data(), 960, {40, 40}, 3, 5, buffer.data());
    int count = 0;
    for (size_t i = 0; i < dst.size(); i += 6) count += dst[i] == 0;
    return count;
  };
  EXPECT_GT(zeros(1.0f / 255), 1400);
  EXPECT_LT(zeros(1), 100);
}

// Oddity: a source's rows may lie at any step.
TEST_P(Eigen, TakesUnevenSourceSteps) {
  std::vector<float> even(20 * 9), dst(20 * 9);
  for (size_t i = 0; i < even.size(); ++i) even[i] = static_cast<float>(i * i % 251);
  std::vector<char> uneven(82 * 9), buffer(96 * 20);
  for (int y = 0; y < 9; ++y) std::memcpy(uneven.data() + 82 * y, even.data() + 20 * y, 80);
  for_each_eigen([&]<class T>(const EigenMember<T>& member) {
    if constexpr (sizeof(T) == 4) {
      dst.resize(even.size() * member.values);
      ASSERT_EQ(member.call({reinterpret_cast<const float*>(uneven.data()),
                             82,
                             dst.data(),
                             80 * member.values,
                             {20, 9},
                             3,
                             3,
                             buffer.data()}),
                StatusOk);
      EXPECT_TRUE(same_bits(expected(member, even, {20, 9}, 3, 3), dst));
    }
  });
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(EigenStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_eigen([]<class T>(const EigenMember<T>& member) {
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      Fixture<T> fixture(member, {{10, 6}}, 3, 5);
      fixture.src.fill([random = Random(7)]() mutable { return pixel<T>(random, true); });
      const auto bytes = [&] {
        auto all = fixture.dst.all_bytes();
        all.insert(all.end(), fixture.buffer.data(), fixture.buffer.data() + fixture.buffer.size());
        return all;
      };
      const auto before = bytes();
      auto args = fixture.args();
      spoil(args);
      EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
      EXPECT_EQ(before == bytes(), status != StatusOk) << member.name << ": " << what;
    };
    const int32_t src_row = 10 * int{sizeof(T)}, dst_row = 40 * member.values;
    expect("null source, width 0", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.width = 0; });
    expect("null destination, short step", StatusNullPtr,
           [](auto& a) { a.dst = nullptr, a.srcStep = 1; });
    expect("null buffer, aperture 4", StatusNullPtr,
           [](auto& a) { a.buffer = nullptr, a.aperture = 4; });
    expect("width 0", StatusBadSize, [](auto& a) { a.roi.width = 0; });
    expect("height 0", StatusBadSize, [](auto& a) { a.roi.height = 0; });
    expect("negative height", StatusBadSize, [](auto& a) { a.roi.height = -1; });
    expect("short source step", StatusBadSize, [&](auto& a) { a.srcStep = src_row - 1; });
    expect("short destination step", StatusBadSize, [&](auto& a) { a.dstStep = dst_row - 4; });
    expect("uneven destination step", StatusBadSize, [&](auto& a) { a.dstStep = dst_row + 2; });
    expect("a width whose row overflows an int", StatusBadSize,
           [](auto& a) { a.roi.width = (1 << 30) + 1, a.srcStep = a.dstStep = INT32_MAX / 4 * 4; });
    for (int size : {-3, 0, 1, 2, 4, 6, 8, 9}) {
      expect("aperture", StatusBadSize, [=](auto& a) { a.aperture = size; });
      expect("block", StatusBadSize, [=](auto& a) { a.block = size; });
    }
  });
}

TEST(EigenStatus, SizesAreTestedBeforeThePointer) {
  for (const auto get_size : {nuqiMinEigenValGetSize, nuqiEigenValsVecsGetSize}) {
    int32_t size = -7;
    EXPECT_EQ(get_size(0, 3, 3, nullptr), StatusBadSize);
    EXPECT_EQ(get_size(-1, 3, 3, &size), StatusBadSize);
    EXPECT_EQ(get_size(10, 3, 3, nullptr), StatusNullPtr);
    for (int bad : {-1, 1, 2, 4, 6, 8, 9}) {
      EXPECT_EQ(get_size(10, bad, 3, nullptr), StatusBadSize);
      EXPECT_EQ(get_size(10, 3, bad, &size), StatusBadSize);
    }
    EXPECT_EQ(get_size(22369622, 3, 3, nullptr), StatusBadSize);
    EXPECT_EQ(get_size(INT32_MAX, 3, 3, &size), StatusBadSize);
    EXPECT_EQ(size, -7);
    for (int aperture : kSizes)
      for (int block : kSizes) {
        EXPECT_EQ(get_size(10, aperture, block, &size), StatusOk);
        EXPECT_EQ(size, 960);
        EXPECT_EQ(get_size(22369621, aperture, block, &size), StatusOk);
        EXPECT_EQ(size, 2147483616);
      }
  }
}

TEST_P(Eigen, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_eigen([&]<class T>(const EigenMember<T>& member) {
    for (int aperture : kSizes)
      for (int block : kSizes)
        for (RoiSize roi : {RoiSize{1, 9}, {7, 2}, {16, 20}, {130, 40}}) {
          const auto picture = random_picture<T>(roi, 6u + roi.width).pixels;
          std::vector<float> dst(picture.size() * member.values);
          std::vector<uint8_t> buffer(buffer_size(roi.width, aperture, block));
          ASSERT_EQ(
              member.call({picture.data(), roi.width * int{sizeof(T)}, dst.data(),
                           4 * member.values * roi.width, roi, aperture, block, buffer.data()}),
              StatusOk);
          hash.add(dst);
        }
  });
  EXPECT_TRUE(same_hash(0xFA6F33069F32DCDA, hash));
}

}  // namespace
}  // namespace nuqi::test
