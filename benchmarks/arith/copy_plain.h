// Plain loops of the copy family, to measure against.
#pragma once

#include "arith/copy_members.h"

namespace nuqi::bench {

template <class T>
using CopyLoop = void (*)(const test::CopyArgs<T>&);

enum class CopyWay { to_planes, to_one_plane, to_pixels };

// As each compiler makes it.
namespace gcc {
template <class T>
CopyLoop<T> plain_copy(CopyWay way, int channels);
}
namespace clang {
template <class T>
CopyLoop<T> plain_copy(CopyWay way, int channels);
}

}  // namespace nuqi::bench
