// The pool of states: memory stays bounded, threads share it.
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <thread>
#include <vector>

#include "support.h"

namespace {

using nuqi::Image;
using namespace nuqi::test;

// Of this process, in memory now.
std::int64_t resident_bytes() {
  std::ifstream file("/proc/self/statm");
  std::int64_t all = 0, resident = 0;
  file >> all >> resident;
  return resident * 4096;
}

// The stated figure: of all widths up to 4096 the states of one filter take 13 sizes, twice the largest
// together; those below make less than 1.3 MB.
TEST(States, AMillionOfThemStayUnderThreeMegabytes) {
  constexpr int kStates = 1000000;
  const auto src = random_image<std::uint8_t>(4096, 1);
  Image<std::int16_t> of_filter(4096, 1);
  Image<std::uint8_t> of_morphology(4096, 1);
  const nuqi::Element element = nuqi::Element::rectangle(3, 3);
  const std::int64_t before = resident_bytes();
  std::uint32_t seed = 1;
  for (int i = 0; i < kStates; ++i) {
    seed = seed * 1664525u + 1013904223u;
    const std::int64_t width = 1 + (seed >> 8) % 4096;
    const auto row = src.roi(0, 0, width, 1);
    switch (i % 4) {
      case 0: nuqi::box_sum(row, of_filter.roi(0, 0, width, 1), 3); break;
      case 1: nuqi::sobel(row, of_filter.roi(0, 0, width, 1), 1, 0, 5); break;
      case 2: nuqi::laplace(row, of_filter.roi(0, 0, width, 1), 7); break;
      default: nuqi::erode(row, of_morphology.roi(0, 0, width, 1), element); break;
    }
  }
  EXPECT_LT(resident_bytes() - before, 3000000);
}

TEST(States, AreAsWideAsTheNextPowerOfTwo) {
  EXPECT_EQ(nuqi::detail::state_width(1), 1);
  EXPECT_EQ(nuqi::detail::state_width(64), 64);
  EXPECT_EQ(nuqi::detail::state_width(65), 128);
  EXPECT_EQ(nuqi::detail::state_width((1 << 30) - 1), 1 << 30);
  EXPECT_EQ(nuqi::detail::state_width((1 << 30) + 1), INT32_MAX);
}

// Objects at work have states of their own, whatever was given back before.
TEST(States, NoTwoObjectsShareOne) {
  const auto first = random_image<std::uint8_t>(30, 12, 1),
             second = random_image<std::uint8_t>(30, 12, 2);
  Image<std::int16_t> expected(30, 12), found(30, 12), other(30, 12);
  nuqi::box_sum(first, expected, 5);
  nuqi::BoxSum a(5), b(5);
  a.begin();
  const std::int64_t given = a.feed(first, found);
  b(second, other);
  a.finish(found.roi(0, given, 30, 12 - given));
  EXPECT_TRUE(equal(found, expected));
  nuqi::BoxSum moved = std::move(a);
  moved(first, other);
  EXPECT_TRUE(equal(other, expected));
}

TEST(States, ThreadsShareThePool) {
  const auto src = random_image<std::uint8_t>(100, 20);
  Image<std::int16_t> expected(100, 20);
  nuqi::laplace(src, expected, 5);
  std::vector<int> wrong(4);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < wrong.size(); ++t) {
    threads.emplace_back([&, t] {
      Image<std::int16_t> dst(100, 20);
      for (int i = 0; i < 500; ++i) {
        nuqi::laplace(src, dst, 5);
        wrong[t] += equal(dst, expected) ? 0 : 1;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(4));
}

}  // namespace
