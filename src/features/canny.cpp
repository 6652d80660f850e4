// Canny's edge detector: nuqiCanny_16s8u_C1R and nuqiCannyGetSize, which sizes its buffer.
#include "features/canny.h"

#include <cstring>

#include "core/validate.h"

namespace nuqi {
namespace {

// Hysteresis: turns into edges all open pixels connected to an edge through open pixels, starting from
// the words that the sweeps have left on the stack. A word is pushed only when one of its pixels is marked
// from another word, so the stack never holds more words than there are pixels.
class Walk {
 public:
  Walk(const CannyJob& job, int64_t count)
      : open_(job.open),
        edges_(job.edges),
        stack_(job.stack),
        row_words_(job.row_words),
        count_(count) {}

  void run() {
    while (count_ != 0) spread(pop());
  }

 private:
  int64_t pop() {
    uint32_t word = 0;
    std::memcpy(&word, stack_ + --count_, sizeof word);
    return word;
  }

  // Marks those of the pixels of a word that are open.
  void mark(int64_t word, uint64_t pixels) {
    const uint64_t found = open_[word] & pixels;
    if (found == 0) return;
    open_[word] &= ~found;
    edges_[word] |= found;
    const uint32_t entry = static_cast<uint32_t>(word);
    std::memcpy(stack_ + count_++, &entry, sizeof entry);
  }

  void spread(int64_t word) {
    uint64_t edges = edges_[word], open = open_[word];
    while (const uint64_t found = (edges << 1 | edges >> 1) & open) {
      edges |= found;
      open &= ~found;
    }
    edges_[word] = edges;
    open_[word] = open;

    const uint64_t reached = edges | edges << 1 | edges >> 1;
    const int64_t above = word - row_words_, below = word + row_words_;
    mark(above, reached);
    mark(below, reached);
    constexpr uint64_t kFirst = 1, kLast = kFirst << (kCannyWordPixels - 1);
    if (edges & kFirst) {
      mark(above - 1, kLast);
      mark(word - 1, kLast);
      mark(below - 1, kLast);
    }
    if (edges & kLast) {
      mark(above + 1, kFirst);
      mark(word + 1, kFirst);
      mark(below + 1, kFirst);
    }
  }

  CannyWord *open_, *edges_;
  uint32_t* stack_;
  int64_t row_words_, count_;
};

// Towards zero; no magnitude exceeds 32767. The comparison comes first: a float beyond an integer's
// range, or an infinite one, cannot be converted.
int16_t truncated(float threshold) {
  return threshold < INT16_MAX ? static_cast<int16_t>(threshold) : INT16_MAX;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

StatusCode nuqiCannyGetSize(RoiSize roi, int32_t* size) {
  CannyPlan plan = {};

  // clang-format off
  if (below_one(roi))                                              return StatusBadSize;
  if (!plan_canny(roi, plan))                                      return StatusBadSize;
  if (any_null(size))  /* deliberate: after the size */            return StatusNullPtr;
  // clang-format on

  *size = static_cast<int32_t>(plan.size);
  return StatusOk;
}

StatusCode nuqiCanny_16s8u_C1R(const int16_t* dx, int32_t dxStep, const int16_t* dy, int32_t dyStep,
                               uint8_t* dst, int32_t dstStep, RoiSize roi, float low, float high,
                               void* buffer) {
  const Image<const int16_t> gradient_x = {dx, dxStep}, gradient_y = {dy, dyStep};
  const Image<uint8_t> out = {dst, dstStep};
  CannyPlan plan = {};

  // clang-format off
  if (any_null(dx, dy, dst, static_cast<char*>(buffer)))           return StatusNullPtr;
  if (below_one(roi))                                              return StatusBadSize;
  if (short_row(gradient_x, roi.width) || uneven(gradient_x))      return StatusBadSize;
  if (short_row(gradient_y, roi.width) || uneven(gradient_y))      return StatusBadSize;
  if (short_row(out, roi.width))                                   return StatusBadSize;
  if (!plan_canny(roi, plan))                                      return StatusBadSize;
  if (low < 0 || !(high >= low))  /* before truncation; NaN */     return StatusUnsupported;
  // clang-format on

  const Scratch scratch(buffer);
  CannyWord* const maps = scratch[plan.maps];
  std::memset(static_cast<void*>(maps), 0,
              static_cast<size_t>(plan.maps.count) * sizeof(CannyWord));
  const CannyJob job = {
      .dx = gradient_x,
      .dy = gradient_y,
      .dst = out,
      .roi = roi,
      .low = truncated(low),
      .high = truncated(high),
      .magnitudes = scratch[plan.magnitudes],
      .open = maps + plan.open,
      .edges = maps + plan.edges,
      .stack = scratch[plan.stack],
      .row_words = plan.row_words,
  };
  canny_kernels().find(job);
  Walk(job, canny_kernels().sweep(job)).run();
  canny_kernels().write(job);
  return StatusOk;
}
