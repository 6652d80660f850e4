// The accumulation family: nuqiAdd, nuqiAddSquare, nuqiAddProduct, nuqiAddWeighted.
#include "arith/accumulate.h"

#include <type_traits>

#include "core/validate.h"

namespace nuqi {
namespace {

constexpr bool kMasked = true;

template <Term term, bool masked, class T>
StatusCode accumulate(Image<const T> src, Image<const T> src2, Image<const uint8_t> mask,
                      Image<float> acc, RoiSize roi, float alpha) {
  constexpr bool product = term == Term::product;
  // Deliberate: nuqiAddProduct_32f_C1IR holds its source steps against the width in pixels.
  const bool short_sources =
      product && !masked && std::is_same_v<T, float>
          ? src.step < roi.width || src2.step < roi.width
          : short_row(src, roi.width) || (product && short_row(src2, roi.width));

  // clang-format off
  if (any_null(src.data, acc.data))                                return StatusNullPtr;
  if (product && any_null(src2.data))                              return StatusNullPtr;
  if (masked && any_null(mask.data))                               return StatusNullPtr;
  if (negative(roi))                                               return StatusBadSize;
  if (short_sources || uneven(src) || (product && uneven(src2)))   return StatusBadSize;
  if (masked && short_row(mask, roi.width))                        return StatusBadSize;
  if (short_row(acc, roi.width) || uneven(acc))                    return StatusBadSize;
  // clang-format on

  ContiguousCollapse(roi, tight(src, roi.width) && (!product || tight(src2, roi.width)) &&
                              (!masked || tight(mask, roi.width)) && tight(acc, roi.width));
  if (empty(roi)) return StatusOk;
  const AccumulateJob<T> job = {
      .src = src, .src2 = src2, .mask = mask, .acc = acc, .roi = roi, .alpha = alpha};
  accumulate_kernels().of_type<T>().of[static_cast<int>(term)][masked](job);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T, term)                                                                      \
  StatusCode name(const T* src, int32_t srcStep, float* acc, int32_t accStep, RoiSize roi) {      \
    return accumulate<term, !kMasked, T>({src, srcStep}, {}, {}, {acc, accStep}, roi, 0);         \
  }
ENTRY(nuqiAdd_8u32f_C1IR,        uint8_t, Term::add)
ENTRY(nuqiAdd_8s32f_C1IR,        int8_t,  Term::add)
ENTRY(nuqiAdd_32f_C1IR,          float,   Term::add)
ENTRY(nuqiAddSquare_8u32f_C1IR,  uint8_t, Term::square)
ENTRY(nuqiAddSquare_8s32f_C1IR,  int8_t,  Term::square)
ENTRY(nuqiAddSquare_32f_C1IR,    float,   Term::square)
#undef ENTRY

#define ENTRY(name, T, term)                                                                      \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  float* acc, int32_t accStep, RoiSize roi) {                                     \
    return accumulate<term, kMasked, T>(                                                          \
        {src, srcStep}, {}, {mask, maskStep}, {acc, accStep}, roi, 0);                            \
  }
ENTRY(nuqiAdd_8u32f_C1IMR,       uint8_t, Term::add)
ENTRY(nuqiAdd_8s32f_C1IMR,       int8_t,  Term::add)
ENTRY(nuqiAdd_32f_C1IMR,         float,   Term::add)
ENTRY(nuqiAddSquare_8u32f_C1IMR, uint8_t, Term::square)
ENTRY(nuqiAddSquare_8s32f_C1IMR, int8_t,  Term::square)
ENTRY(nuqiAddSquare_32f_C1IMR,   float,   Term::square)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src1, int32_t src1Step, const T* src2, int32_t src2Step,               \
                  float* acc, int32_t accStep, RoiSize roi) {                                     \
    return accumulate<Term::product, !kMasked, T>(                                                \
        {src1, src1Step}, {src2, src2Step}, {}, {acc, accStep}, roi, 0);                          \
  }
ENTRY(nuqiAddProduct_8u32f_C1IR, uint8_t)
ENTRY(nuqiAddProduct_8s32f_C1IR, int8_t)
ENTRY(nuqiAddProduct_32f_C1IR,   float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src1, int32_t src1Step, const T* src2, int32_t src2Step,               \
                  const uint8_t* mask, int32_t maskStep, float* acc, int32_t accStep,             \
                  RoiSize roi) {                                                                  \
    return accumulate<Term::product, kMasked, T>(                                                 \
        {src1, src1Step}, {src2, src2Step}, {mask, maskStep}, {acc, accStep}, roi, 0);            \
  }
ENTRY(nuqiAddProduct_8u32f_C1IMR, uint8_t)
ENTRY(nuqiAddProduct_8s32f_C1IMR, int8_t)
ENTRY(nuqiAddProduct_32f_C1IMR,   float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, float* acc, int32_t accStep, RoiSize roi,        \
                  float alpha) {                                                                  \
    return accumulate<Term::weighted, !kMasked, T>(                                               \
        {src, srcStep}, {}, {}, {acc, accStep}, roi, alpha);                                      \
  }
ENTRY(nuqiAddWeighted_8u32f_C1IR, uint8_t)
ENTRY(nuqiAddWeighted_8s32f_C1IR, int8_t)
ENTRY(nuqiAddWeighted_32f_C1IR,   float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  float* acc, int32_t accStep, RoiSize roi, float alpha) {                        \
    return accumulate<Term::weighted, kMasked, T>(                                                \
        {src, srcStep}, {}, {mask, maskStep}, {acc, accStep}, roi, alpha);                        \
  }
ENTRY(nuqiAddWeighted_8u32f_C1IMR, uint8_t)
ENTRY(nuqiAddWeighted_8s32f_C1IMR, int8_t)
ENTRY(nuqiAddWeighted_32f_C1IMR,   float)
#undef ENTRY
