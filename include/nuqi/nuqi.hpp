/// nuqi in C++17: every function of nuqi.h on views of anybody's memory, without a step, a scratch size or a
/// status code. Header only. docs/operations.tsv lists the operations and the C functions that each reaches.
///
/// Images go in as View, Image, or anything that ImageTraits knows; outputs follow the inputs and are written,
/// never allocated. Operations throw Error; those that write only images also take std::nothrow as their last
/// argument and return the status: StatusBadSize for unequal sizes, StatusBadArg for forbidden overlap.
/// An empty image is an error everywhere. With kept objects and -O2 a call takes some 5 ns more than that of its C
/// function (./bench --hpp).
#ifndef NUQI_NUQI_HPP
#define NUQI_NUQI_HPP

#include <nuqi/nuqi.h>

#include <nuqi/hpp/arith.hpp>
#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/channels.hpp>
#include <nuqi/hpp/checks.hpp>
#include <nuqi/hpp/corners.hpp>
#include <nuqi/hpp/derivatives.hpp>
#include <nuqi/hpp/distance.hpp>
#include <nuqi/hpp/edges.hpp>
#include <nuqi/hpp/error.hpp>
#include <nuqi/hpp/fill.hpp>
#include <nuqi/hpp/histogram.hpp>
#include <nuqi/hpp/image.hpp>
#include <nuqi/hpp/match.hpp>
#include <nuqi/hpp/means.hpp>
#include <nuqi/hpp/min_max.hpp>
#include <nuqi/hpp/morphology.hpp>
#include <nuqi/hpp/motion.hpp>
#include <nuqi/hpp/norms.hpp>
#include <nuqi/hpp/overloads.hpp>
#include <nuqi/hpp/pyramid.hpp>
#include <nuqi/hpp/scratch.hpp>
#include <nuqi/hpp/strips.hpp>
#include <nuqi/hpp/view.hpp>

#endif
