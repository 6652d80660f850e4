// Plain flood fills by spans, to measure against.
#pragma once

#include "fill/flood_fill_members.h"

namespace nuqi::bench {

// As each compiler makes them, for arguments that a fill accepts.
namespace gcc {
template <class T>
void plain_fill(const test::FillArgs<T>& args, bool gradient, bool diagonal);
}
namespace clang {
template <class T>
void plain_fill(const test::FillArgs<T>& args, bool gradient, bool diagonal);
}

}  // namespace nuqi::bench
