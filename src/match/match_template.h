// What the entries of template matching share with its kernels: the layout of the buffer, and the job.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"
#include "core/scratch.h"

namespace nuqi {

enum class Measure { sq_diff, sq_diff_normed, corr, corr_normed, coeff, coeff_normed };

// Which sums over the patch under the template a measure needs beside its products.
constexpr bool needs_sums(Measure m) { return m == Measure::coeff || m == Measure::coeff_normed; }
constexpr bool needs_energies(Measure m) {
  return m == Measure::sq_diff_normed || m == Measure::corr_normed || m == Measure::coeff_normed;
}

// How the buffer is used. Its regions start on multiples of kMatchAlignment, and each has kSpare bytes
// more than it needs.
constexpr int kMatchAlignment = 32;

template <class T>
struct MatchPlan {
  static constexpr int64_t kSpare = 16;

  Region<T> tpl;             // the template, its rows back to back
  Region<T> strip;           // columns of the source
  Region<int64_t> result;    // a result column
  Region<int64_t> row_sums;  // of each source row, under the template's columns
  Region<int64_t> row_energies;
  Region<int64_t> patch_sums;  // of each row of a result column
  int64_t size;                // what the query tells

  constexpr MatchPlan(RoiSize src, RoiSize tpl_roi, Measure m) {
    const int64_t pixels = int64_t{tpl_roi.width} * tpl_roi.height;
    const int64_t dst_height = int64_t{src.height} - tpl_roi.height + 1;
    const int kinds = needs_sums(m) + needs_energies(m);
    ScratchLayout layout(kMatchAlignment);
    tpl = place<T>(layout, pixels);
    strip = place<T>(layout, int64_t{src.height} * tpl_roi.width + src.width);
    result = place<int64_t>(layout, dst_height);
    if (kinds != 0) {
      row_sums = place<int64_t>(layout, src.height);
      row_energies = place<int64_t>(layout, src.height);
      patch_sums = place<int64_t>(layout, kinds * dst_height);
    }
    size = layout.size();
  }

 private:
  template <class E>
  static constexpr Region<E> place(ScratchLayout& layout, int64_t count) {
    return layout.add<E>(count + kSpare / int64_t{sizeof(E)});
  }
};

template <class T>
struct MatchJob {
  Image<const T> src, tpl;
  Image<float> dst;
  RoiSize tpl_roi, dst_roi;
  void* work;  // the buffer
  int64_t work_bytes;
  double* tpl_doubles;  // room for the template's floats as doubles
  double* row_sums;     // of floats, where the measure needs them
  double* row_energies;
};

template <class T>
struct MatchKernelsOf {
  void (*of[6])(const MatchJob<T>&);  // [Measure]
};

using MatchKernels8u = MatchKernelsOf<uint8_t>;
using MatchKernels8s = MatchKernelsOf<int8_t>;
using MatchKernels32f = MatchKernelsOf<float>;

NUQI_KERNEL_TABLES(MatchKernels8u, match_template_8u_kernels)
NUQI_KERNEL_TABLES(MatchKernels8s, match_template_8s_kernels)
NUQI_KERNEL_TABLES(MatchKernels32f, match_template_32f_kernels)

}  // namespace nuqi
