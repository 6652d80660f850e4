// Images beyond 32 bits: memory that is only reserved until a pixel is written.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <nuqi/nuqi.hpp>

#include "support.h"

namespace {

using nuqi::Mask;
using nuqi::View;

constexpr std::int64_t kBeyond = (std::int64_t{1} << 31) + 4096;

class Reserved {
 public:
  explicit Reserved(std::int64_t bytes) : bytes_(static_cast<std::size_t>(bytes)) {
    if (sizeof(void*) == 4) return;
    void* memory = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory != MAP_FAILED) memory_ = memory;
  }
  Reserved(const Reserved&) = delete;
  Reserved& operator=(const Reserved&) = delete;
  ~Reserved() {
    if (memory_ != nullptr) munmap(memory_, bytes_);
  }
  template <class T, int Channels = 1>
  View<T, Channels> rows(std::int64_t width, std::int64_t height, std::int64_t step) const {
    return View<T, Channels>(static_cast<T*>(memory_), width, height,
                             static_cast<std::ptrdiff_t>(step));
  }
  bool usable() const { return memory_ != nullptr; }

 private:
  std::size_t bytes_;
  void* memory_ = nullptr;
};

TEST(Large, StepsMayExceed31Bits) {
  const Reserved memory(3 * kBeyond);
  const Reserved more(3 * kBeyond);
  if (!memory.usable() || !more.usable()) GTEST_SKIP() << "no such addresses";
  const auto image = memory.rows<std::uint8_t>(70, 3, kBeyond);
  const auto mask = more.rows<std::uint8_t>(70, 3, kBeyond);
  image(69, 2) = 210;
  image(3, 1) = 21;
  mask(69, 2) = mask(3, 1) = mask(0, 0) = 1;
  EXPECT_DOUBLE_EQ(nuqi::mean(image), 1.1);
  EXPECT_DOUBLE_EQ(nuqi::mean(image, Mask(mask)), 77);
  EXPECT_EQ(nuqi::norm_l1(image), 231);
  EXPECT_EQ(nuqi::norm_rel_l1(image, image), 0);
  EXPECT_EQ(nuqi::norm_rel_inf(mask, image, Mask(mask)), 209.0 / 210);
  EXPECT_EQ(nuqi::histogram(image, {1, 100, 256}), (std::vector<std::int64_t>{1, 1}));
  const auto found = nuqi::min_max(image, Mask(mask));
  EXPECT_EQ(found.max_at.y, 2);
  EXPECT_EQ(found.max_at.x, 69);
  EXPECT_EQ(found.min_at.x, 0);
  image(0, 0) = 22;
  EXPECT_EQ(nuqi::min_max(image, Mask(mask)).min_at.y, 1);
  mask(0, 0) = 0;
  EXPECT_EQ(nuqi::min_max(image, Mask(mask)).min, 21) << "a band without pixels has no 0";
  mask(0, 0) = 1;

  nuqi::Image<std::uint8_t> dst(70, 3);
  nuqi::abs_diff(image, mask, dst);
  EXPECT_EQ(dst(69, 2), 209);
  nuqi::Image<std::uint8_t, 3> joined(70, 3);
  nuqi::join(image, mask, dst, joined);
  EXPECT_EQ(joined(69, 2, 0), 210);
  EXPECT_EQ(joined(69, 2, 2), 209);
  EXPECT_EQ(nuqi::abs_diff(image, dst, image.roi(0, 0, 69, 3), std::nothrow), StatusBadSize);
}

TEST(Large, FloatsInBands) {
  const Reserved memory(3 * kBeyond);
  if (!memory.usable()) GTEST_SKIP() << "no such addresses";
  const auto image = memory.rows<float, 3>(50, 3, kBeyond);
  for (int x = 0; x < 50; ++x) image(x, 1, 1) = 3;
  image(7, 2, 1) = -2;
  EXPECT_DOUBLE_EQ(nuqi::mean(image, 1), 148.0 / 150);
  EXPECT_DOUBLE_EQ(nuqi::mean_std(image, 1).deviation,
                   std::sqrt(454.0 / 150 - 148.0 / 150 * (148.0 / 150)));
  EXPECT_EQ(nuqi::norm_l2(image, 1), std::sqrt(454.0));
  EXPECT_EQ(nuqi::min_max(image, 1).min_at.y, 2);
}

TEST(Large, RowsMayExceed31Bits) {
  if (std::getenv("NUQI_EMULATOR") != nullptr)
    GTEST_SKIP() << "2^31 pixels take an emulator minutes";
  const Reserved memory(kBeyond);
  if (!memory.usable()) GTEST_SKIP() << "no such addresses";
  const auto image = memory.rows<std::uint8_t>(kBeyond, 1, kBeyond);
  image(kBeyond - 1, 0) = 9;
  const auto found = nuqi::min_max(image);
  EXPECT_EQ(found.max, 9);
  EXPECT_EQ(found.max_at.x, kBeyond - 1);
}

}  // namespace
