// Benchmarks of the histograms: on noise, ":constant" on a picture of one value, ":two" on one whose
// pixels have one of two values at random.
#include <vector>

#include "stats/histogram_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

int32_t histogram[33 * 33];  // the images' buffers may be smaller

// An increment in memory for each pixel, at an address known only then, without a dependency chain.
void increments(int64_t pixels) {
  static uint32_t counters[4][256];
  uint64_t value = 0;
  for (int64_t i = 0; i + 4 <= pixels; i += 4) {
    benchmark::DoNotOptimize(value);
    ++counters[0][value];
    ++counters[1][value];
    ++counters[2][value];
    ++counters[3][value];
    value = (value + 1) & 0xFF;
  }
  benchmark::DoNotOptimize(counters);
}

void register_increments(const std::string& name, RoiSize roi) {
  register_bound(name, roi, [=](const Images&) {
    return [=] { increments(int64_t{roi.width} * roi.height); };
  });
}

enum class Picture { noise, constant, two };
constexpr struct {
  Picture picture;
  const char* suffix;
} kPictures[] = {{Picture::noise, ""}, {Picture::constant, ":constant"}, {Picture::two, ":two"}};

// Benchmarks call(source, its step).
template <class Call>
auto on_picture(Picture picture, int channels, RoiSize roi, Call call) {
  return [=](const Images& im) {
    std::vector<uint8_t> drawn(size_t(roi.width) * roi.height * channels, 100);
    if (picture == Picture::two)
      for (size_t i = 0; i < drawn.size(); ++i) drawn[i] = im.mask.get()[i / channels] ? 50 : 200;
    return [=, noise = im.u8.get()] {
      call(picture == Picture::noise ? noise : drawn.data(), roi.width * channels);
    };
  };
}

// Every value has a bin of its own.
void register_hist(const std::string& name, RoiSize roi, Picture picture) {
  std::vector<uint8_t> levels;
  for (int i = 0; i < 256; ++i) levels.push_back(static_cast<uint8_t>(i));
  const auto run = [=](auto hist) {
    return on_picture(picture, 1, roi, [=](const uint8_t* src, int32_t step) {
      hist(src, step, roi, histogram, 256, levels.data());
    });
  };
  register_limit<Streams<1>>(name, roi);
  register_increments(name, roi);
  register_function(name, roi, run(nuqiCalcHist_8u_C1R));
  register_plain(name, "gcc", roi, run(gcc::plain_hist));
#if NUQI_PLAIN_CLANG
  register_plain(name, "clang", roi, run(clang::plain_hist));
#endif
}

// 32 bins of eight values for each channel.
void register_joint_hist(const std::string& name, RoiSize roi, Picture picture) {
  std::vector<int32_t> levels;
  for (int channel = 0; channel < 2; ++channel)
    for (int i = 0; i <= 32; ++i) levels.push_back(8 * i);
  const auto run = [=](auto hist) {
    return on_picture(picture, 2, roi, [=](const uint8_t* src, int32_t step) {
      const int32_t counts[2] = {32, 32};
      hist(src, step, roi, histogram, 32 * 4, counts, levels.data());
    });
  };
  register_limit<Streams<2>>(name, roi);
  register_increments(name, roi);
  register_function(name, roi, run(nuqiCalcHist_8u_C2R));
  register_plain(name, "gcc", roi, run(gcc::plain_joint_hist));
#if NUQI_PLAIN_CLANG
  register_plain(name, "clang", roi, run(clang::plain_joint_hist));
#endif
}

void register_total(const std::string& name, RoiSize roi) {
  const auto run = [=](auto total) {
    return [=](const Images& im) {
      return [=, src = reinterpret_cast<const int32_t*>(im.in.get()),
              dst = reinterpret_cast<float*>(im.out.get())] {
        benchmark::DoNotOptimize(total(src, dst, roi.width * roi.height, 0));
      };
    };
  };
  register_limit<Streams<4>>(name, roi);
  register_function(name, roi, run(nuqiConvertHist1D_32s32f));
  register_plain(name, "gcc", roi, run(gcc::plain_hist_total));
#if NUQI_PLAIN_CLANG
  register_plain(name, "clang", roi, run(clang::plain_hist_total));
#endif
}

void register_histogram() {
  for (RoiSize roi : kSizes) {
    for (const auto& [picture, suffix] : kPictures) {
      register_hist(std::string("nuqiCalcHist_8u_C1R") + suffix, roi, picture);
      register_joint_hist(std::string("nuqiCalcHist_8u_C2R") + suffix, roi, picture);
    }
    register_total("nuqiConvertHist1D_32s32f", roi);
  }
}

const Family family(register_histogram);

}  // namespace
}  // namespace nuqi::bench
