// Plain loops of template matching, to measure against.
#pragma once

#include "match/match_template_members.h"

namespace nuqi::bench {

template <class T>
using MatchLoop = void (*)(const test::MatchArgs<T>&);

// As each compiler makes them.
namespace gcc {
template <class T>
MatchLoop<T> plain_match(test::MatchMeasure measure);
}
namespace clang {
template <class T>
MatchLoop<T> plain_match(test::MatchMeasure measure);
}

}  // namespace nuqi::bench
