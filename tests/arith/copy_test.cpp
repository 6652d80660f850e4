// Tests of the copy family.
#include <gtest/gtest.h>

#include <memory>

#include "arith/copy_members.h"
#include "arith/copy_reference.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/shapes.h"

namespace nuqi::test {
namespace {

// Every bit counts in a copy, a NaN's too.
template <class T>
std::vector<uint8_t> bytes_of(const std::vector<T>& values) {
  std::vector<uint8_t> bytes(values.size() * sizeof(T));
  std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}

constexpr const char* kPlanes[] = {"plane 0", "plane 1", "plane 2", "plane 3"};

// The images of one call, filled with any bits. The array of planes ends at a wall, too.
template <class T>
struct Fixture {
  Fixture(int count, const Case& c, uint64_t seed)
      : channels(count),
        roi(c.roi),
        pixels("pixels", c, 0, channels),
        array(channels * sizeof(T*), Wall::after, "array of planes") {
    Random random(seed);
    const auto any_bits = [&] {
      T value;
      const uint64_t bits = random.bits();
      std::memcpy(&value, &bits, sizeof value);
      return value;
    };
    pixels.fill(any_bits);
    for (int k = 0; k < channels; ++k) {
      planes.push_back(std::make_unique<WalledImage<T>>(kPlanes[k], c, 1));
      planes[k]->fill(any_bits);
      give(k);
    }
  }
  T** list() { return reinterpret_cast<T**>(array.data()); }
  void give(int k) { list()[k] = planes[k]->data(); }
  CopyArgs<T> args() { return {pixels.data(), pixels.step(), list(), planes[0]->step(), roi}; }
  std::vector<uint8_t> all_bytes() {
    std::vector<uint8_t> all = pixels.all_bytes();
    for (auto& plane : planes) {
      const auto more = plane->all_bytes();
      all.insert(all.end(), more.begin(), more.end());
    }
    return all;
  }

  int channels;
  RoiSize roi;
  WalledImage<T> pixels;
  std::vector<std::unique_ptr<WalledImage<T>>> planes;
  WalledBytes array;
};

class Copy : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Copy);

template <class T>
void expect_agreement(const CopyMember<T>& member, const Case& c) {
  Fixture<T> f(member.channels, c, static_cast<uint64_t>(c.roi.width));
  if (member.to_planes) {
    ASSERT_EQ(member.call(f.args()), StatusOk);
    for (int k = 0; k < f.channels; ++k) {
      const auto expected = channel_reference(f.pixels.pixels(), f.channels, k);
      ASSERT_EQ(bytes_of(expected), bytes_of(f.planes[k]->pixels())) << "channel " << k;
      ASSERT_TRUE(f.planes[k]->padding_untouched());
    }
  } else {
    std::vector<std::vector<T>> planes;
    for (auto& plane : f.planes) planes.push_back(plane->pixels());
    ASSERT_EQ(member.call(f.args()), StatusOk);
    ASSERT_EQ(bytes_of(join_reference(planes)), bytes_of(f.pixels.pixels()));
    ASSERT_TRUE(f.pixels.padding_untouched());
  }
}

TEST_P(Copy, AgreesWithTheReference) {
  for_each_copy([](const auto& member) {
    for_each_case(member.name, 2, [&](const Case& c) { expect_agreement(member, c); },
                  {{101, 3}, {140, 2}, {1531, 600}});  // the last exceeds L2
  });
}

TEST_P(Copy, OnePlaneTakesItsChannelAlone) {
  for_each_copy([]<class T>(const CopyMember<T>& member) {
    if (!member.to_planes) return;
    for (int channel = 0; channel < member.channels; ++channel) {
      for (int width : {1, 5, 15, 16, 31, 33, 64, 67, 129, 200}) {
        const int padding = width % 2;
        Fixture<T> f(member.channels, {{width, 2}, Wall::after, {padding, padding}}, width);
        for (int k = 0; k < f.channels; ++k) f.list()[k] = nullptr;
        f.give(channel);
        const auto other = f.planes[(channel + 1) % f.channels]->all_bytes();
        ASSERT_EQ(member.call(f.args()), StatusOk);
        const auto expected = channel_reference(f.pixels.pixels(), f.channels, channel);
        ASSERT_EQ(bytes_of(expected), bytes_of(f.planes[channel]->pixels()))
            << member.name << " width " << width << " channel " << channel;
        ASSERT_TRUE(f.planes[channel]->padding_untouched());
        ASSERT_EQ(other, f.planes[(channel + 1) % f.channels]->all_bytes());
      }
    }
  });
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(CopyStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_copy([]<class T>(const CopyMember<T>& member) {
    constexpr int e = sizeof(T);
    const bool split = member.to_planes;
    const int n = member.channels;
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      Fixture<T> f(n, {{10, 4}}, 7);
      const auto before = f.all_bytes();
      CopyArgs<T> args = f.args();
      spoil(args, f.list());
      EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
      EXPECT_EQ(before, f.all_bytes()) << member.name << ": " << what;
    };
    expect("null image, negative width", StatusNullPtr,
           [](auto& a, T**) { a.pixels = nullptr, a.roi.width = -1; });
    expect("null array, short step", StatusNullPtr,
           [](auto& a, T**) { a.planes = nullptr, a.pixelStep = 0; });
    expect("no plane, negative height", StatusNullPtr, [&](auto& a, T** planes) {
      for (int k = 0; k < n; ++k) planes[k] = nullptr;
      a.roi.height = -1;
    });
    for (int k = 0; k < n; ++k)
      expect("one plane too few, negative width", StatusNullPtr,
             [&](auto& a, T** planes) { planes[k] = nullptr, a.roi.width = -1; });
    expect("two planes", StatusNullPtr, [&](auto&, T** planes) {
      for (int k = 2; k < n; ++k) planes[k] = nullptr;
    });
    expect("negative width, short step", StatusBadSize,
           [](auto& a, T**) { a.roi.width = -1, a.planeStep = -8; });
    expect("negative height", StatusBadSize, [](auto& a, T**) { a.roi.height = -1; });
    // Deliberate: an empty ROI passes to planes, and does not from planes.
    expect("width 0", split ? StatusOk : StatusBadSize, [](auto& a, T**) { a.roi.width = 0; });
    expect("height 0", split ? StatusOk : StatusBadSize, [](auto& a, T**) { a.roi.height = 0; });
    expect("short row of pixels", StatusBadSize,
           [&](auto& a, T**) { a.pixelStep = (10 * n - 1) * e, a.roi.height = 1; });
    expect("short row of a plane", StatusBadSize,
           [&](auto& a, T**) { a.planeStep = 9 * e, a.roi.height = 1; });
    if (split) {
      expect("short row in an empty ROI", StatusBadSize,
             [&](auto& a, T**) { a.planeStep = 9 * e, a.roi.height = 0; });
      expect("one plane, short row", StatusBadSize, [&](auto& a, T** planes) {
        for (int k = 0; k < n - 1; ++k) planes[k] = nullptr;
        a.planeStep = 9 * e;
      });
    }
    expect("a width whose row overflows an int", StatusBadSize, [&](auto& a, T**) {
      a.roi.width = INT32_MAX / n / e + 1, a.pixelStep = a.planeStep = INT32_MAX - 3;
    });
    if (e == 4) {
      expect("uneven step of pixels", StatusBadSize,
             [&](auto& a, T**) { a.pixelStep = 10 * n * e + 2; });
      expect("uneven step of planes", StatusBadSize, [](auto& a, T**) { a.planeStep = 42; });
    }
  });
}

TEST_P(Copy, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_copy([&]<class T>(const CopyMember<T>& member) {
    for (int width : {1, 7, 16, 37, 130}) {
      // All bytes are hashed, those between the rows too.
      const int padding = width % 3;
      Fixture<T> f(member.channels, {{width, 5}, Wall::after, {padding, padding}}, width);
      ASSERT_EQ(member.call(f.args()), StatusOk);
      hash.add(f.all_bytes());
    }
  });
  EXPECT_TRUE(same_hash(0x5FEB7D3EC9F32585, hash));
}

}  // namespace
}  // namespace nuqi::test
