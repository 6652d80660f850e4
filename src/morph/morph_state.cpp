// The states of erosion and dilation.
#include "morph/morph_state.h"

#include <cassert>
#include <cstring>
#include <new>

#include "core/alloc.h"
#include "core/square_root.h"
#include "morph/strip.h"

namespace nuqi {
namespace {

constexpr bool is_shape(int32_t shape) {
  return shape == kRectangle || shape == kCross || shape == kEllipse || shape == kArbitrary;
}

struct MorphRequest {
  int32_t width, type, channels;
  RoiSize mask;
  PixelPoint anchor;
  int32_t shape;
};

// Where the parts of a state's block lie, in bytes from its start.
struct MorphPlan {
  int64_t row_step, first_row, spare_rows, mask, mask_size, table, size;
};

bool exceeds_32_bits(uint64_t a, uint64_t b) { return a > UINT32_MAX / b; }

// False where a product is beyond 32 bits, tested before it is formed: three factors overflow 64 bits.
bool plan_state(const MorphRequest& request, MorphPlan& plan) {
  const int64_t element = element_bytes(request.type), pixel = element * request.channels;
  const int64_t rows = int64_t{request.mask.height} + spare_rows(request.type);
  const int64_t columns = int64_t{request.width} + request.mask.width;
  plan.row_step = (pixel * columns - 1 + 17 * pixel) & (-8 * element);
  if (exceeds_32_bits(plan.row_step, rows)) return false;
  plan.mask_size = 0;
  if (request.shape == kEllipse || request.shape == kArbitrary) {
    if (exceeds_32_bits(16 * int64_t{request.mask.width}, request.mask.height)) return false;
    plan.mask_size = 16 * int64_t{request.mask.width} * request.mask.height;
  }
  // What the header takes beyond its size with pointers of 32 bits; the rows stay aligned.
  constexpr int64_t kMore = (int64_t{sizeof(MorphState)} - 60 + 31) & -32;
  constexpr int64_t kPointer = sizeof(void*);
  plan.first_row = kMore + ((pixel * request.anchor.x + 63 + 8 * element) & (-8 * element));
  plan.spare_rows = plan.first_row + plan.row_step * request.mask.height;
  plan.mask = plan.first_row + plan.row_step * rows;
  plan.table = plan.mask + plan.mask_size;
  plan.size = (kMore + (plan.row_step + kPointer) * rows + plan.mask_size + 79 +
               pixel * request.mask.width) &
              ~7;
  return plan.size <= UINT32_MAX;
}

// The nearest integer, of two the even one; below 2^51.
int64_t nearest_even(double x) {
  constexpr double kNoFraction = 0x1.8p52;
  const volatile double rounded = x + kNoFraction;
  return static_cast<int64_t>(rounded - kNoFraction);
}

// Deliberate: the middle row of an odd height stays empty, but for its first pixel where the run of
// the row above is one pixel longer than the row.
void draw_ellipse(RoiSize size, uint8_t* mask) {
  const int64_t width = size.width, height = size.height, rx = width / 2, ry = height / 2;
  std::memset(mask, 0, static_cast<size_t>(width * height));
  const double square = static_cast<double>(ry) * static_cast<double>(ry);
  for (int64_t i = 0; i < ry; ++i) {
    const auto up = static_cast<double>(ry - i);
    const double share = (square - up * up) * (1 / square);
    const int64_t dx = nearest_even(static_cast<double>(rx) * square_root(share));
    const int64_t begin = rx > dx ? rx - dx : 0, end = rx + dx < width ? rx + dx : width;
    const int64_t rows[] = {i, height - 1 - i};
    for (const int64_t row : rows) {
      const int64_t from = row * width + begin, count = end - begin + 1;
      assert(from + count <= width * height);
      std::memset(mask + from, 0xFF, static_cast<size_t>(count));
    }
  }
}

// The entries of bytes; the last comes first, since all are where the widened ones go.
void widen(uint8_t* mask, int64_t count) {
  constexpr int kEntry = kMaskEntry<uint8_t>;
  for (int64_t i = count - 1; i >= 0; --i) std::memset(mask + kEntry * i, mask[i], kEntry);
}

void build_masks(const MorphRequest& request, const int32_t* element, MorphState& state) {
  const int64_t count = int64_t{request.mask.width} * request.mask.height;
  if (request.shape == kEllipse)
    draw_ellipse(request.mask, state.inside);
  else
    for (int64_t i = 0; i < count; ++i) state.inside[i] = element[i] != 0 ? 0xFF : 0;
  for (int64_t i = 0; i < count; ++i) state.outside[i] = state.inside[i] ^ 0xFF;
  if (request.type != k8u) return;
  widen(state.inside, count);
  widen(state.outside, count);
}

MorphState* new_state(const MorphRequest& request, const int32_t* element) {
  MorphPlan plan;
  if (!plan_state(request, plan)) return nullptr;
  auto* block = static_cast<uint8_t*>(AlignedAlloc(static_cast<uint32_t>(plan.size)));
  if (block == nullptr) return nullptr;
  auto* state = new (block) MorphState{
      .maskWidth = request.mask.width,
      .maskHeight = request.mask.height,
      .anchorX = request.anchor.x,
      .anchorY = request.anchor.y,
      .shape = request.shape == kEllipse ? int32_t{kArbitrary} : request.shape,
      .outside = block + plan.mask + plan.mask_size / 2,
      .inside = block + plan.mask,
      .maxWidth = request.width,
      .dataType = request.type,
      .channels = request.channels,
      .firstRow = block + plan.first_row,
      .rowStep = static_cast<int32_t>(plan.row_step),
      .held = 0,
      .rows = reinterpret_cast<void**>(block + plan.table),
      .spareRows = block + plan.spare_rows,
  };
  if (state->shape == kArbitrary) build_masks(request, element, *state);
  return state;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

StatusCode nuqiMorphologyInitAlloc(int32_t roiWidth, int32_t dataType, int32_t channels,
                                   RoiSize maskSize, PixelPoint anchor, int32_t shape,
                                   const int32_t* mask, MorphState** state) {
  const auto not_below = [](int32_t a, int32_t b) {
    return static_cast<uint32_t>(a) >= static_cast<uint32_t>(b);
  };
  // clang-format off
  if (any_null(state))                                             return StatusNullPtr;
  *state = nullptr;
  if (roiWidth < 1)                                                return StatusBadSize;
  if (dataType != k8u && dataType != k32f)                         return StatusBadDataType;
  if (channels != 1 && channels != 3 && channels != 4)             return StatusBadChannels;
  if (below_one(maskSize))                                         return StatusBadSize;
  if (not_below(anchor.x, maskSize.width))                         return StatusBadArg;
  if (not_below(anchor.y, maskSize.height))                        return StatusBadArg;
  if (!is_shape(shape))                                            return StatusBadArg;
  if (shape == kArbitrary && any_null(mask))                       return StatusNullPtr;
  // clang-format on

  *state = new_state({roiWidth, dataType, channels, maskSize, anchor, shape}, mask);
  return *state == nullptr ? StatusNoMemory : StatusOk;
}

// Deliberate: the block stays allocated, whatever the mask's width, which the contract would have read
// as the address of a block.
StatusCode nuqiMorphologyFree(MorphState* state) {
  if (any_null(state)) return StatusNullPtr;
  return StatusOk;
}
