// The tour's section on accumulation: a sequence of frames in running sums.
#include <algorithm>

#include "pictures/colours.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr int kFrames = 24;

constexpr char kText[] =
    "Running sums over 24 frames of a still camera: the picture, two balls that cross it in "
    "opposite directions, and fresh noise in each frame. Sums, sums of squares and weighted sums "
    "are what models of a background are made of. Each call adds one frame.";

const std::vector<Declaration> kDeclarations = {
    {"frame", "static uint8_t frame[height * width];  /* the next one */"},
    {"last", "static uint8_t last[height * width];  /* the one before */"},
    {"mask", "static uint8_t mask[height * width];  /* not 0: taken */"},
    {"step", "int32_t step = width;"},
    {"sum", "static float sum[height * width];  /* keeps its sums from call to call */"},
    {"squares", "static float squares[height * width];"},
    {"products", "static float products[height * width];"},
    {"masked", "static float masked[height * width];"},
    {"trail", "static float trail[height * width];  /* at first the first frame */"},
    {"window", "static float window[height * width];  /* at first the first frame */"},
    {"acc_step", "int32_t acc_step = 4 * width;"},
};

// The times of one call over the frames, and its text.
struct Timeline {
  std::string text;
  std::vector<double> seconds;

  Call call() const { return {text, median_of(seconds), int(seconds.size())}; }
};

// A call in place must run once a frame, so its runs are the frames.
#define NUQI_ON_FRAME(timeline, call) \
  (timeline).text = #call;            \
  (timeline).seconds.push_back(seconds_of([&] { require_ok(call, #call); }))

// Everything that is summed on the way through the frames.
struct Sums {
  explicit Sums(RoiSize size)
      : sum(size),
        square_sum(size),
        product_sum(size),
        masked_sum(size),
        trail(size),
        window(size),
        plain_sum(size) {}

  Plane<float> sum, square_sum, product_sum, masked_sum, trail, window, plain_sum;
  Timeline add, add_square, add_product, add_masked, add_weighted, add_window, plain;
};

void add_frame(Sums& sums, const Plane<uint8_t>& now, const Plane<uint8_t>& previous,
               const Plane<uint8_t>& mask_plane) {
  const RoiSize roi = now.size;
  const uint8_t *frame = now.data(), *last = previous.data(), *mask = mask_plane.data();
  const int32_t step = now.step(), acc_step = sums.sum.step();
  float *sum = sums.sum.data(), *squares = sums.square_sum.data();
  float *products = sums.product_sum.data(), *masked = sums.masked_sum.data();
  float *trail = sums.trail.data(), *window = sums.window.data();
  NUQI_ON_FRAME(sums.add, nuqiAdd_8u32f_C1IR(frame, step, sum, acc_step, roi));
  sums.plain.seconds.push_back(seconds_of([&] { plain::add(now, sums.plain_sum); }));
  NUQI_ON_FRAME(sums.add_square, nuqiAddSquare_8u32f_C1IR(frame, step, squares, acc_step, roi));
  NUQI_ON_FRAME(sums.add_product,
                nuqiAddProduct_8u32f_C1IR(frame, step, last, step, products, acc_step, roi));
  NUQI_ON_FRAME(sums.add_masked,
                nuqiAdd_8u32f_C1IMR(frame, step, mask, step, masked, acc_step, roi));
  NUQI_ON_FRAME(sums.add_weighted,
                nuqiAddWeighted_8u32f_C1IR(frame, step, trail, acc_step, roi, 0.25f));
  NUQI_ON_FRAME(sums.add_window,
                nuqiAddWeighted_8u32f_C1IMR(frame, step, mask, step, window, acc_step, roi, 0.25f));
}

// sums / kFrames - (sum / kFrames)^2, in double precision: the two terms nearly cancel.
Plane<float> beyond_mean_square(const Plane<float>& sums, const Plane<float>& sum) {
  Plane<float> result(sum.size);
  for (size_t i = 0; i < result.values.size(); ++i) {
    const double mean = double(sum.values[i]) / kFrames;
    result.values[i] = float(double(sums.values[i]) / kFrames - mean * mean);
  }
  return result;
}

Plane<uint8_t> mean_of(Plane<float> sum) {
  for (float& value : sum.values) value /= kFrames;
  return rounded(sum);
}

void add_before(Section& section, const Scene& scene) {
  for (const int index : {0, kFrames / 2 - 4}) {
    const std::string number = std::to_string(index + 1);
    section.before.emplace_back(
        "Frame " + number + " of " + std::to_string(kFrames),
        "Frame " + number + ": the picture with two balls in front of it and noise",
        picture_of(frame_of(scene, index, kFrames)));
  }
}

void add_after(Section& section, const Sums& sums) {
  auto& after = section.after;
  after.emplace_back("Running average", "The picture without balls, nearly free of noise",
                     picture_of(mean_of(sums.sum)));
  after.back()
      .note("The sum of the frames, divided by 24. What moves fades and the noise averages out.")
      .with(sums.add.call())
      .calls.back()
      .plain_seconds = median_of(sums.plain.seconds);
  plain::require_same(sums.plain_sum.values, sums.sum.values, "nuqiAdd_8u32f_C1IR");

  const Plane<float> variance = beyond_mean_square(sums.square_sum, sums.sum);
  const double range = usual_range(variance);
  after.emplace_back("Variance", "The two balls' ways glow on a dark ground",
                     heat_colours(variance, range));
  after.back()
      .note("The mean square minus the squared mean: it glows where something moved.")
      .with(heat_legend(range, "squared grey levels"))
      .with(sums.add_square.call())
      .with(sums.add.call());

  after.emplace_back("Weighted average", "The last places of the balls, with fading trails",
                     picture_of(rounded(sums.trail)));
  after.back()
      .note(
          "Each frame moves the average by a quarter of the difference, so that it follows "
          "what changes and forgets what was.")
      .with(sums.add_weighted.call());

  after.emplace_back("Masked average", "The average inside an ellipse, black outside",
                     picture_of(mean_of(sums.masked_sum)));
  after.back()
      .note("Only the pixels that a mask selects take part: here those of an ellipse.")
      .with(sums.add_masked.call());

  after.emplace_back("Masked weighted average",
                     "Inside an ellipse the last frames, outside the first frame",
                     picture_of(rounded(sums.window)));
  after.back()
      .note("Inside the mask the average follows the frames; outside the first frame stands still.")
      .with(sums.add_window.call());

  const Plane<float> product = beyond_mean_square(sums.product_sum, sums.sum);
  const double product_range = usual_range(product);
  after.emplace_back("Product of successive frames", "The balls' ways in orange, the noise is gone",
                     signed_colours(product, product_range));
  after.back()
      .note(
          "The mean product of each frame with the one before, minus the squared mean: what "
          "lasts longer than a frame is orange, and noise, which does not, nearly vanishes.")
      .with(signed_legend(product_range))
      .with(sums.add_product.call());
}

}  // namespace

Section accumulation_section(const Scene& scene) {
  Section section{"accumulation", "Accumulation", kText, {}, {}, {}, kDeclarations};
  const Plane<uint8_t> mask = ellipse_mask(scene.grey.size);
  Sums sums(scene.grey.size);
  Plane<uint8_t> previous = frame_of(scene, kFrames - 1, kFrames);
  for (int index = 0; index < kFrames; ++index) {
    Plane<uint8_t> frame = frame_of(scene, index, kFrames);
    if (index == 0) {  // weighted averages start as the first frame
      std::copy(frame.values.begin(), frame.values.end(), sums.trail.values.begin());
      sums.window = sums.trail;
    }
    add_frame(sums, frame, previous, mask);
    previous = std::move(frame);
  }
  add_before(section, scene);
  add_after(section, sums);
  return section;
}

}  // namespace tools
