// Images of 2^31 pixels and more, whose offsets and counts are beyond 32 bits.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "arith/abs_diff_reference.h"
#include "morph/strip_reference.h"
#include "pyramid/pyramid_reference.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/values.h"

namespace nuqi::test {
namespace {

// A stretch of memory, mapped over and over: as many pixels as addresses permit out of a megabyte.
class Repeated {
 public:
  static constexpr size_t kPiece = 3 << 18;  // whole rows of one channel and of three

  explicit Repeated(size_t pieces) : mapped_(pieces * kPiece) {
    if (sizeof(void*) == 4) return;
    base_ = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (base_ != MAP_FAILED) repeated_ = lay(0, pieces);
  }
  Repeated(const Repeated&) = delete;
  Repeated& operator=(const Repeated&) = delete;
  ~Repeated() {
    if (base_ != MAP_FAILED) munmap(base_, mapped_);
  }

  bool usable() const { return repeated_; }
  uint8_t* data() { return static_cast<uint8_t*>(base_); }
  // What is repeated.
  std::vector<uint8_t> piece() { return {data(), data() + kPiece}; }
  // The last piece gets memory of its own.
  bool part_last() { return repeated_ = lay(mapped_ / kPiece - 1, 1); }
  uint8_t* last() { return data() + mapped_ - kPiece; }

 private:
  bool lay(size_t first, size_t count) {
    const int file = memfd_create("piece", 0);
    bool good = file >= 0 && ftruncate(file, kPiece) == 0;
    for (size_t i = first; good && i < first + count; ++i)
      good = mmap(data() + i * kPiece, kPiece, PROT_READ | PROT_WRITE,
                  MAP_SHARED | MAP_FIXED | MAP_POPULATE, file, 0) != MAP_FAILED;
    close(file);
    return good;
  }

  size_t mapped_;
  void* base_ = MAP_FAILED;
  bool repeated_ = false;
};

constexpr size_t kPieces = 2731;
constexpr RoiSize kRoi = {65536, 32772};  // 2^31 pixels are 32768 rows
constexpr int32_t kStep = kRoi.width;
static_assert(kPieces * Repeated::kPiece == size_t{65536} * 32772);

class LargeImages : public EveryIsa {
 protected:
  void SetUp() override {
    EveryIsa::SetUp();
    if (IsSkipped()) return;
    if (std::getenv("NUQI_EMULATOR")) GTEST_SKIP() << "2^31 pixels take an emulator minutes";
    if (!src().usable() || !mask().usable() || !dst().usable())
      GTEST_SKIP() << "no room for 2^31 pixels";
    Random random(1);
    for (size_t i = 0; i < Repeated::kPiece; ++i) {
      src().data()[i] = random.integer<uint8_t>();
      mask().data()[i] = random.mask();
    }
  }
  // Mapped by the first test that runs, for all of a process.
  static Repeated& src() { return image(0); }
  static Repeated& mask() { return image(1); }
  static Repeated& dst() { return image(2); }

 private:
  static Repeated& image(size_t i) {
    static Repeated images[3] = {Repeated(kPieces), Repeated(kPieces), Repeated(kPieces)};
    return images[i];
  }
};
NUQI_FOR_EVERY_ISA(LargeImages);

TEST_P(LargeImages, EveryRowIsWritten) {
  std::memset(dst().data(), 0x5A, Repeated::kPiece);
  ASSERT_EQ(
      nuqiAbsDiff_8u_C1R(src().data(), kStep, mask().data(), kStep, dst().data(), kStep, kRoi),
      StatusOk);
  EXPECT_TRUE(same_bits(abs_diff_reference(src().piece(), mask().piece(), 0), dst().piece()));
}

TEST_P(LargeImages, EveryPixelCounts) {
  int64_t count = 0, sum = 0, squares = 0;
  for (size_t i = 0; i < Repeated::kPiece; ++i) {
    if (mask().data()[i] == 0) continue;
    ++count, sum += src().data()[i], squares += src().data()[i] * src().data()[i];
  }
  double mean = 0, norm = 0;
  ASSERT_EQ(nuqiMean_8u_C1MR(src().data(), kStep, mask().data(), kStep, kRoi, &mean), StatusOk);
  const auto wrapped = static_cast<int32_t>(static_cast<uint64_t>(sum) * kPieces);
  EXPECT_EQ(mean, static_cast<double>(wrapped) / static_cast<double>(count * int64_t{kPieces}));
  ASSERT_EQ(nuqiNorm_L2_8u_C1MR(src().data(), kStep, mask().data(), kStep, kRoi, &norm), StatusOk);
  EXPECT_EQ(norm, std::sqrt(static_cast<double>(squares * int64_t{kPieces})));
}

// All rows of the source are one, and so are those of the result.
TEST_P(LargeImages, EveryRowGoesDownAPyramid) {
  std::vector<uint8_t> rows = src().piece();
  rows.resize(2 * size_t{kStep});
  std::copy_n(rows.begin(), kStep, rows.begin() + kStep);
  for (size_t i = 0; i < Repeated::kPiece; ++i) src().data()[i] = rows[i % kStep];
  std::memset(dst().data(), 0x5A, Repeated::kPiece);
  int32_t size = 0;
  ASSERT_EQ(nuqiPyrDownGetBufSize_Gauss5x5(kRoi.width, 1, 1, &size), StatusOk);
  std::vector<uint8_t> buffer(size), expected = pyramid_reference(rows, {kStep, 2}, 1, false);
  ASSERT_EQ(nuqiPyrDown_Gauss5x5_8u_C1R(src().data(), kStep, dst().data(), kStep / 2, kRoi,
                                        buffer.data()),
            StatusOk);
  while (expected.size() < Repeated::kPiece)
    expected.insert(expected.end(), expected.begin(), expected.begin() + kStep / 2);
  EXPECT_TRUE(same_bits(expected, dst().piece()));
}

// A spot behind 2^31 pixels; its fill takes no more of the buffer, nor time, than it would in a small
// image.
TEST_P(LargeImages, FillsASpot) {
  ASSERT_TRUE(dst().part_last());
  const size_t pixels = size_t{65536} * 32772, size = 7 * pixels + 2 * (65536 + 32772) + 4;
  void* const buffer = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (buffer == MAP_FAILED) GTEST_SKIP() << "no addresses for the buffer";
  for (const auto fill : {nuqiFloodFill_4Con_8u_C1IR, nuqiFloodFill_8Con_8u_C1IR}) {
    std::memset(dst().data(), 100, Repeated::kPiece);
    std::memset(dst().last(), 100, Repeated::kPiece);
    // Columns 65533 to 65535 of the last three rows.
    for (size_t row = 9; row < 12; ++row) std::memset(dst().last() + (row + 1) * 65536 - 3, 7, 3);
    FillRegion region = {};
    ASSERT_EQ(fill(dst().data(), kStep, kRoi, {65534, 32771}, 9, &region, buffer), StatusOk);
    EXPECT_EQ((std::vector<double>{region.area, region.value}), (std::vector<double>{9, 9}));
    EXPECT_EQ((std::vector<int32_t>{region.x, region.y, region.width, region.height}),
              (std::vector<int32_t>{65533, 32769, 3, 3}));
    EXPECT_EQ(dst().last()[Repeated::kPiece - 1], 9);
    EXPECT_EQ(dst().last()[Repeated::kPiece - 4], 100);
  }
  munmap(buffer, size);
}

// The extremes lie behind 2^31 bytes, of one channel and of three.
TEST_P(LargeImages, PlacesBeyond32Bits) {
  ASSERT_TRUE(dst().part_last());
  std::memset(dst().data(), 100, Repeated::kPiece);
  std::memset(dst().last(), 100, Repeated::kPiece);
  dst().last()[5] = 7;
  dst().last()[Repeated::kPiece - 1] = 200;
  float min = 0, max = 0;
  PixelPoint min_at = {}, max_at = {};
  ASSERT_EQ(nuqiMinMaxIndx_8u_C1R(dst().data(), kStep, kRoi, &min, &max, &min_at, &max_at),
            StatusOk);
  EXPECT_EQ((std::vector<float>{min, max}), (std::vector<float>{7, 200}));
  EXPECT_EQ((std::vector<int32_t>{min_at.x, min_at.y, max_at.x, max_at.y}),
            (std::vector<int32_t>{5, 32760, 65535, 32771}));
  const RoiSize thirds = {kRoi.width, kRoi.height / 3};
  ASSERT_EQ(
      nuqiMinMaxIndx_8u_C3CR(dst().data(), 3 * kStep, thirds, 3, &min, &max, &min_at, &max_at),
      StatusOk);
  EXPECT_EQ((std::vector<float>{min, max}), (std::vector<float>{7, 200}));
  EXPECT_EQ((std::vector<int32_t>{min_at.x, min_at.y, max_at.x, max_at.y}),
            (std::vector<int32_t>{1, 10920, 65535, 10923}));

  // One row as long as they come, whose last pixel is the largest.
  dst().data()[INT32_MAX - 1] = 150;
  const RoiSize row = {INT32_MAX, 1};
  ASSERT_EQ(nuqiMinMaxIndx_8u_C1R(dst().data(), INT32_MAX, row, &min, &max, &min_at, &max_at),
            StatusOk);
  EXPECT_EQ((std::vector<float>{min, max}), (std::vector<float>{7, 150}));
  EXPECT_EQ((std::vector<int32_t>{min_at.x, min_at.y, max_at.x, max_at.y}),
            (std::vector<int32_t>{32760 * kRoi.width + 5, 0, INT32_MAX - 1, 0}));
}

// What is repeated is seen below its own last row; the image's last rows are written last.
TEST_P(LargeImages, ErosionWritesEveryRow) {
  constexpr int kRows = Repeated::kPiece / kStep;
  const Element element = {{3, 3}, {1, 1}, std::vector<int32_t>(9, 1)};
  const std::vector<uint8_t> piece = src().piece();
  std::vector<uint8_t> pixels = piece;
  pixels.insert(pixels.end(), piece.begin(), piece.end());
  auto expected = strip_reference(false, 100, element, 1, {kStep, 2 * kRows}, pixels);
  expected.erase(expected.begin(), expected.begin() + Repeated::kPiece);
  std::memset(dst().data(), 0x5A, Repeated::kPiece);
  MorphState* state = nullptr;
  ASSERT_EQ(nuqiMorphologyInitAlloc(kStep, 1, 1, element.size, element.anchor, 0, nullptr, &state),
            StatusOk);
  RoiSize roi = kRoi;
  ASSERT_EQ(nuqiErodeStrip_Rect_8u_C1R(src().data(), kStep, dst().data(), kStep, &roi, state, 0),
            StatusOk);
  EXPECT_EQ(roi.height, kRoi.height);
  EXPECT_TRUE(same_bits(expected, dst().piece()));
}

}  // namespace
}  // namespace nuqi::test
