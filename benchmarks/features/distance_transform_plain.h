// Plain distance transforms, to measure against.
#pragma once

#include "features/distance_transform_members.h"

namespace nuqi::bench {

// As each compiler makes it.
namespace gcc {
void plain_distance_3x3(const test::DistanceArgs& args);
void plain_distance_5x5(const test::DistanceArgs& args);
}  // namespace gcc
namespace clang {
void plain_distance_3x3(const test::DistanceArgs& args);
void plain_distance_5x5(const test::DistanceArgs& args);
}  // namespace clang

}  // namespace nuqi::bench
