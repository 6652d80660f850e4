// The tour's section on the filters with states: blur, Sobel and Laplace of several apertures.
#include <memory>

#include "pictures/colours.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "Filters of 3, 5 or 7 pixels a side. What they need from call to call lies in a state, which "
    "is made once for a width and then serves any number of pictures, whole or in stripes. "
    "The larger the aperture, the smoother and the less noisy the result.";

struct EndState {
  void operator()(ConvolState* state) const { nuqiConvolFree(state); }
};
using FilterState = std::unique_ptr<ConvolState, EndState>;

constexpr int32_t kOfBytes = 1;  // what a state's filter reads

// Of make(&state), a call that makes one.
template <class Make>
FilterState state_of(const Make& make) {
  ConvolState* state = nullptr;
  require_ok(make(&state), "a state's call");
  return FilterState(state);
}

const std::vector<std::string> kCautions = {
    "Releasing a filter's state frees nothing: <code>nuqiConvolFree</code> ends its use and leaves "
    "its memory until the program ends. Make one state for a width and an aperture, keep it, and "
    "use it for all pictures.",
};

const std::vector<Declaration> kDeclarations = {
    {"src", "static uint8_t src[height * width];  /* grey levels */"},
    {"dst", "static int16_t dst[height * width];"},
    {"src_step", "int32_t src_step = width;"},
    {"dst_step", "int32_t dst_step = 2 * width;"},
    {"state", "ConvolState* state = NULL;  /* keep it for all pictures of this width */"},
};

// What all figures of the section are made of.
struct Bench {
  Section& section;
  const Plane<uint8_t>& grey;
  Plane<int16_t> result{grey.size};
};

void add_blur(Bench& bench, int size) {
  RoiSize roi = bench.grey.size;
  const uint8_t* src = bench.grey.data();
  int16_t* dst = bench.result.data();
  const int32_t src_step = bench.grey.step(), dst_step = bench.result.step();
  const FilterState owner = state_of(
      [&](ConvolState** made) { return nuqiBlurInitAlloc(roi.width, kOfBytes, size, made); });
  ConvolState* state = owner.get();
  const Plane<uint8_t> padded = plain::padded(bench.grey, size / 2);
  Plane<int16_t> plain_sums(bench.grey.size);
  Call call = NUQI_TIMED(nuqiBlur_8u16s_C1R(src, src_step, dst, dst_step, &roi, state, 0))
                  .made_by("nuqiBlurInitAlloc(width, 1, " + std::to_string(size) + ", &state)")
                  .against([&] { plain::blur(padded, size, plain_sums); });
  plain::require_same(plain_sums.values, bench.result.values, "nuqiBlur_8u16s_C1R");
  Plane<float> mean(bench.grey.size);
  for (size_t i = 0; i < mean.values.size(); ++i) {
    mean.values[i] = float(bench.result.values[i]) / float(size * size);
  }
  const std::string side = std::to_string(size);
  Figure figure("Blur, " + side + " × " + side, "The picture blurred over " + side + " pixels",
                picture_of(rounded(mean)));
  figure.note("The sum of " + std::to_string(size * size) +
              " pixels, here divided by their number.");
  bench.section.after.push_back(std::move(figure.with(std::move(call))));
}

void add_signed(Bench& bench, const std::string& title, const std::string& note, Call call) {
  const double range = usual_range(bench.result);
  Figure figure(title, title + " of the picture: " + note, signed_colours(bench.result, range));
  figure.with(signed_legend(range)).with(std::move(call)).note(note + ".");
  bench.section.after.push_back(std::move(figure));
}

void add_sobel(Bench& bench, int size, int x_order, int y_order, const char* title,
               const char* note) {
  RoiSize roi = bench.grey.size;
  const uint8_t* src = bench.grey.data();
  int16_t* dst = bench.result.data();
  const int32_t src_step = bench.grey.step(), dst_step = bench.result.step();
  const FilterState owner = state_of([&](ConvolState** made) {
    return nuqiSobelInitAlloc(roi.width, kOfBytes, size, 0, x_order, y_order, made);
  });
  ConvolState* state = owner.get();
  Call call = NUQI_TIMED(nuqiSobel_8u16s_C1R(src, src_step, dst, dst_step, &roi, state, 0))
                  .made_by("nuqiSobelInitAlloc(width, 1, " + std::to_string(size) + ", 0, " +
                           std::to_string(x_order) + ", " + std::to_string(y_order) + ", &state)");
  add_signed(bench, title, note, std::move(call));
}

void add_laplace(Bench& bench, int size, const char* note) {
  RoiSize roi = bench.grey.size;
  const uint8_t* src = bench.grey.data();
  int16_t* dst = bench.result.data();
  const int32_t src_step = bench.grey.step(), dst_step = bench.result.step();
  const FilterState owner = state_of(
      [&](ConvolState** made) { return nuqiLaplaceInitAlloc(roi.width, kOfBytes, size, made); });
  ConvolState* state = owner.get();
  Call call = NUQI_TIMED(nuqiLaplace_8u16s_C1R(src, src_step, dst, dst_step, &roi, state, 0))
                  .made_by("nuqiLaplaceInitAlloc(width, 1, " + std::to_string(size) + ", &state)");
  add_signed(bench, "Laplace, aperture " + std::to_string(size), note, std::move(call));
}

}  // namespace

Section filters_section(const Scene& scene) {
  Section section{"filters", "Blur, Sobel, Laplace", kText, {}, {}, kCautions, kDeclarations};
  section.before.emplace_back("The picture in grey", "The picture in grey levels",
                              picture_of(scene.grey));
  Bench bench{section, scene.grey};
  for (const int size : {3, 5, 7}) add_blur(bench, size);
  add_sobel(bench, 3, 1, 0, "Sobel dx, aperture 3", "Orange where it gets brighter to the right");
  add_sobel(bench, 7, 1, 0, "Sobel dx, aperture 7", "Less grain, and softer edges");
  add_sobel(bench, 7, 0, 1, "Sobel dy, aperture 7", "Orange where it gets brighter downwards");
  add_sobel(bench, 5, 2, 0, "Sobel d²x, aperture 5", "Blue on bright upright lines");
  add_laplace(bench, 3, "Blue on bright spots, orange on dark ones, and most of all the grain");
  add_laplace(bench, 5, "Edges run between blue and orange");
  add_laplace(bench, 7, "Coarser still");
  return section;
}

}  // namespace tools
