// A plain Canny, to measure against.
#pragma once

#include "features/canny_members.h"

namespace nuqi::bench {

// As each compiler makes it.
namespace gcc {
void plain_canny(const test::CannyArgs& args);
}
namespace clang {
void plain_canny(const test::CannyArgs& args);
}

}  // namespace nuqi::bench
