// Plain loops of the histograms, to measure against.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::bench {

// As each compiler makes them. Tables of bins are made once for each call, as in the library.
namespace gcc {
void plain_hist(const uint8_t* src, int32_t step, RoiSize roi, int32_t* hist, int32_t levelCount,
                const uint8_t* levels);
void plain_joint_hist(const uint8_t* src, int32_t step, RoiSize roi, int32_t* hist,
                      int32_t histStep, const int32_t* counts, const int32_t* levels);
int32_t plain_hist_total(const int32_t* src, float* dst, int32_t length, int32_t flag);
}  // namespace gcc
namespace clang {
void plain_hist(const uint8_t* src, int32_t step, RoiSize roi, int32_t* hist, int32_t levelCount,
                const uint8_t* levels);
void plain_joint_hist(const uint8_t* src, int32_t step, RoiSize roi, int32_t* hist,
                      int32_t histStep, const int32_t* counts, const int32_t* levels);
int32_t plain_hist_total(const int32_t* src, float* dst, int32_t length, int32_t flag);
}  // namespace clang

}  // namespace nuqi::bench
