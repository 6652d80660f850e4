// An empty ROI touches no memory and takes no time, however many rows or columns it has.
#include <gtest/gtest.h>
#include <sys/time.h>

#include <string_view>

#include "arith/abs_diff_members.h"
#include "arith/accumulate_members.h"
#include "arith/copy_members.h"
#include "arith/sample_line_members.h"
#include "features/canny_members.h"
#include "features/distance_transform_members.h"
#include "features/eigen_members.h"
#include "fill/flood_fill_members.h"
#include "filters/blur_members.h"
#include "filters/derivative3x3_members.h"
#include "filters/laplace_members.h"
#include "filters/sobel_members.h"
#include "match/match_template_members.h"
#include "morph/strip_members.h"
#include "pyramid/pyramid_members.h"
#include "stats/mean_members.h"
#include "stats/min_max_members.h"
#include "stats/norm_members.h"
#include "support/crash.h"
#include "support/every_isa.h"
#include "support/walls.h"

namespace nuqi::test {
namespace {

// The widest row that every type and number of channels has a step for.
constexpr int32_t kStep = INT32_MAX / 16 * 16;
constexpr RoiSize kNoColumns = {0, INT32_MAX}, kNoRows = {kStep / 16, 0};
constexpr int kCalls = 20;

// Calls often: walking empty rows takes a second, so that the program runs out of processor time.
template <class Call>
void expect_at_once(const char* name, RoiSize roi, StatusCode status, const Call& call) {
  const Running now(name, roi);
  const itimerval limit = {{}, {3, 0}}, none = {};
  setitimer(ITIMER_VIRTUAL, &limit, nullptr);
  for (int i = 0; i < kCalls; ++i) ASSERT_EQ(call(roi), status) << name << " " << roi.width;
  setitimer(ITIMER_VIRTUAL, &none, nullptr);
}

class EmptyRoi : public EveryIsa {
 protected:
  template <class T>
  T* image() {
    return reinterpret_cast<T*>(nothing_.data());
  }
  // `no_columns` is what {0, height} gives, `no_rows` what {width, 0} does.
  template <class Call>
  void expect_both(const char* name, StatusCode no_columns, StatusCode no_rows, const Call& call) {
    expect_at_once(name, kNoColumns, no_columns, call);
    expect_at_once(name, kNoRows, no_rows, call);
  }

 private:
  WalledBytes nothing_{0, Wall::after, "empty image"};
};
NUQI_FOR_EVERY_ISA(EmptyRoi);

TEST_P(EmptyRoi, Arithmetic) {
  for_each_accumulate([&]<class T>(const AccumulateMember<T>& member) {
    const AccumulateArgs<T> args = {image<T>(), kStep,          image<T>(), kStep, image<uint8_t>(),
                                    kStep,      image<float>(), kStep,      {},    0.5f};
    expect_both(member.name, StatusOk, StatusOk, [&](RoiSize roi) {
      auto a = args;
      a.roi = roi;
      return member.call(a);
    });
  });
  for_each_abs_diff([&]<class T>(const AbsDiffMember<T>& member) {
    expect_both(member.name, StatusBadSize, StatusBadSize, [&](RoiSize roi) {
      return member.call({image<T>(), kStep, image<T>(), kStep, image<T>(), kStep, roi, 1});
    });
  });
  for_each_copy([&]<class T>(const CopyMember<T>& member) {
    T* const planes[4] = {image<T>(), image<T>(), image<T>(), image<T>()};
    const StatusCode status = member.to_planes ? StatusOk : StatusBadSize;
    expect_both(member.name, status, status, [&](RoiSize roi) {
      return member.call({image<T>(), kStep, planes, kStep, roi});
    });
  });
  for_each_sample_line([&]<class T>(const SampleLineMember<T>& member) {
    expect_both(member.name, StatusBadSize, StatusBadSize, [&](RoiSize roi) {
      return member.call(image<T>(), kStep, roi, image<T>(), {0, 0}, {0, 0});
    });
  });
  expect_both("nuqiUpdateMotionHistory_8u32f_C1IR", StatusOk, StatusOk, [&](RoiSize roi) {
    return nuqiUpdateMotionHistory_8u32f_C1IR(image<uint8_t>(), kStep, image<float>(), kStep, roi,
                                              2, 1);
  });
}

TEST_P(EmptyRoi, Statistics) {
  for_each_mean([&]<class T>(const MeanMember<T>& member) {
    const StatusCode status = member.deviation ? StatusBadSize : StatusOk;
    double mean = 1, deviation = 1;
    expect_both(member.name, status, status, [&](RoiSize roi) {
      return member.call({image<T>(), kStep, image<uint8_t>(), kStep, roi, 1, &mean, &deviation});
    });
    EXPECT_EQ(mean, member.deviation ? 1.0 : 0.0) << member.name;
  });
  for_each_norm([&]<class T>(const NormMember<T>& member) {
    double norm = 0;
    expect_both(member.name, StatusBadSize, StatusBadSize, [&](RoiSize roi) {
      return member.call(
          {image<T>(), kStep, image<T>(), kStep, image<uint8_t>(), kStep, roi, 1, &norm});
    });
  });
  for_each_min_max([&]<class T>(const MinMaxMember<T>& member) {
    float min = 1, max = 1;
    PixelPoint min_at, max_at;
    expect_both(member.name, StatusOk, StatusOk, [&](RoiSize roi) {
      return member.call(
          {image<T>(), kStep, image<uint8_t>(), kStep, roi, 1, &min, &max, &min_at, &max_at});
    });
    EXPECT_TRUE(min == 0 && max == 0) << member.name;
  });
  int32_t counts[4] = {1, 1}, levels[4] = {0, 1, 0, 1};
  const uint8_t ends[2] = {0, 1};
  expect_both("nuqiCalcHist_8u_C1R", StatusBadSize, StatusBadSize, [&](RoiSize roi) {
    return nuqiCalcHist_8u_C1R(image<uint8_t>(), kStep, roi, counts, 2, ends);
  });
  expect_both("nuqiCalcHist_8u_C2R", StatusBadSize, StatusBadSize, [&](RoiSize roi) {
    return nuqiCalcHist_8u_C2R(image<uint8_t>(), kStep, roi, counts, 4, counts, levels);
  });
}

TEST_P(EmptyRoi, Filters) {
  for_each_derivative([&]<class T>(const DerivativeMember<T>& member) {
    const auto call = [&](RoiSize roi) {
      return member.call({image<T>(), kStep, image<DerivativeResult<T>>(), kStep, 0, roi, 0});
    };
    expect_at_once(member.name, kNoRows, StatusBadSize, call);
    // That one writes an element of every row: docs/oddities.md.
    if (std::string_view(member.name) != "nuqiSobel3x3_Dx_8u16s_C1R")
      expect_at_once(member.name, kNoColumns, StatusOk, call);
  });
  const auto stripe = [&]<class T, class D>(const StripeMember<T, D>& member) {
    expect_both(member.name, StatusBadSize, StatusBadSize, [&](RoiSize roi) {
      return member.call({image<T>(), kStep, image<D>(), kStep, &roi, image<ConvolState>(), 0});
    });
  };
  for_each_blur(stripe);
  for_each_sobel(stripe);
  for_each_laplace(stripe);
}

TEST_P(EmptyRoi, Features) {
  int32_t size = 0;
  expect_both("nuqiCannyGetSize", StatusBadSize, StatusBadSize,
              [&](RoiSize roi) { return nuqiCannyGetSize(roi, &size); });
  expect_both("nuqiCanny_16s8u_C1R", StatusBadSize, StatusBadSize, [&](RoiSize roi) {
    return call_canny({image<int16_t>(), kStep, image<int16_t>(), kStep, image<uint8_t>(), kStep,
                       roi, 1, 2, image<void>()});
  });
  for_each_eigen([&]<class T>(const EigenMember<T>& member) {
    expect_both(member.name, StatusBadSize, StatusBadSize, [&](RoiSize roi) {
      return member.call({image<T>(), kStep, image<float>(), kStep, roi, 3, 3, image<void>()});
    });
  });
  for (const DistanceMember& member : kDistanceTransforms)
    expect_both(member.name, StatusOk, StatusOk, [&](RoiSize roi) {
      return member.call({image<uint8_t>(), kStep, image<float>(), kStep, roi, image<float>()});
    });
}

TEST_P(EmptyRoi, Pyramid) {
  for_each_pyramid([&]<class T>(const PyramidMember<T>& member) {
    const auto call = [&](RoiSize roi) {
      return member.call({image<T>(), kStep, image<T>(), kStep, roi, image<void>()});
    };
    expect_at_once(member.name, {0, INT32_MAX - 1}, StatusOk, call);
    expect_at_once(member.name, {kStep / 64 * 2, 0}, StatusOk, call);
  });
}

TEST_P(EmptyRoi, Fills) {
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    int32_t size = 0;
    FillRegion region;
    expect_both("the size of a fill's buffer", StatusBadSize, StatusBadSize,
                [&](RoiSize roi) { return member.get_size(roi, &size); });
    expect_both(member.name, StatusBadSize, StatusBadSize, [&](RoiSize roi) {
      return member.call({image<T>(), kStep, roi, {0, 0}, 1, 1, 1, &region, image<void>()});
    });
  });
}

TEST_P(EmptyRoi, Morphology) {
  for_each_strip([&]<class T>(const StripMember<T>& member) {
    const int32_t mask[] = {1};
    MorphState* state = nullptr;
    ASSERT_EQ(nuqiMorphologyInitAlloc(8, data_type(T{}), member.channels, {1, 1}, {0, 0},
                                      member.shape, mask, &state),
              StatusOk);
    for (int32_t border : {0, 1, 2, 4}) {
      const auto call = [&](RoiSize roi) {
        return member.call({image<T>(), kStep, image<T>(), kStep, &roi, state, border});
      };
      expect_at_once(member.name, kNoColumns, StatusBadSize, call);
      expect_at_once(member.name, {8, 0}, StatusNothingToDo, call);
    }
  });
}

TEST_P(EmptyRoi, Templates) {
  for_each_match([&]<class T>(const MatchMember<T>& member) {
    int32_t size = 0;
    expect_both(member.name, StatusBadSize, StatusBadSize, [&](RoiSize roi) {
      EXPECT_EQ(member.query(roi, {1, 1}, 1, &size), StatusBadSize);
      return member.call({image<T>(),
                          kStep,
                          roi,
                          image<T>(),
                          kStep,
                          {1, 1},
                          image<float>(),
                          kStep,
                          image<void>()});
    });
    expect_both(member.name, StatusBadSize, StatusBadSize, [&](RoiSize roi) {
      EXPECT_EQ(member.query({9, 9}, roi, 1, &size), StatusBadSize);
      return member.call({image<T>(),
                          kStep,
                          {9, 9},
                          image<T>(),
                          kStep,
                          roi,
                          image<float>(),
                          kStep,
                          image<void>()});
    });
  });
}

}  // namespace
}  // namespace nuqi::test
