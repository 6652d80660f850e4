// What the entries of the copy family hand to its kernels.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

// T is the unsigned integer of the element's size: copies move bits.
template <class T>
struct SplitJob {
  Image<const T> src;
  Image<T> planes[4];  // of a single channel: the first alone
  RoiSize roi;
};

template <class T>
struct JoinJob {
  Image<const T> planes[4];
  Image<T> dst;
  RoiSize roi;
};

template <class T>
struct CopyKernelsOf {
  void (*split[2])(const SplitJob<T>&);       // [channels - 3]
  void (*extract[2][4])(const SplitJob<T>&);  // [channels - 3][channel]
  void (*join[2])(const JoinJob<T>&);         // [channels - 3]
};

using CopyKernels = ByType<CopyKernelsOf, uint8_t, uint32_t>;

NUQI_KERNEL_TABLES(CopyKernels, copy_kernels)

}  // namespace nuqi
