// Edges, corners, distances, template matching.
#include <nuqi/hpp/corners.hpp>
#include <nuqi/hpp/distance.hpp>
#include <nuqi/hpp/edges.hpp>
#include <nuqi/hpp/match.hpp>

#include "operation.h"

namespace nuqi::python {
namespace {

EdgeOperator edge_operator(PyObject* object) {
  static constexpr const char* kWords[] = {"sobel", "scharr"};
  return word(object, "operator", kWords, 2) == 0 ? EdgeOperator::sobel : EdgeOperator::scharr;
}

// (image, low, high, operator, out)
PyObject* canny(Arguments a) {
  return for_type<std::uint8_t, std::int8_t>(a[0], "image", [&](auto type) {
    const auto image = input<typename decltype(type)::type>(a[0]);
    const float low = real(a[1], "low");
    const float high = real(a[2], "high");
    const EdgeOperator how = edge_operator(a[3]);
    const auto out = output<std::uint8_t>(a[4]);
    unlocked([&] { nuqi::canny(image, out, low, high, how, scratch()); });
    return none();
  });
}

// (image, operator, share): (low, high)
PyObject* canny_thresholds(Arguments a) {
  return for_type<std::uint8_t, std::int8_t>(a[0], "image", [&](auto type) {
    const auto image = input<typename decltype(type)::type>(a[0]);
    const EdgeOperator how = edge_operator(a[1]);
    real(a[2], "share");  // refuses what is no number
    const double share = PyFloat_AsDouble(a[2]);
    const CannyThresholds found =
        unlocked([&] { return nuqi::canny_thresholds(image, how, share, scratch()); });
    return checked(Py_BuildValue("(ff)", found.low, found.high));
  });
}

// (dx, dy, low, high, out)
PyObject* canny_from(Arguments a) {
  const auto dx = input<std::int16_t>(a[0], "dx");
  const auto dy = input<std::int16_t>(a[1], "dy");
  const float low = real(a[2], "low");
  const float high = real(a[3], "high");
  const auto out = output<std::uint8_t>(a[4]);
  unlocked([&] { nuqi::canny_from(dx, dy, out, low, high, scratch()); });
  return none();
}

// (image, template, method, out)
PyObject* match_template(Arguments a) {
  static constexpr const char* kWords[] = {"sq_diff",     "sq_diff_normed", "corr",
                                           "corr_normed", "coeff",          "coeff_normed"};
  const auto method = static_cast<MatchMethod>(word(a[2], "method", kWords, 6));
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "image", [&](auto type) {
    using T = typename decltype(type)::type;
    const auto image = input<T>(a[0]);
    const auto pattern = input<T>(a[1], "template");
    const auto out = output<float>(a[3]);
    unlocked([&] { nuqi::match_template(image, pattern, out, method, scratch()); });
    return none();
  });
}

// (image, aperture, block, out)
template <int Channels, class Go>
PyObject* corners(Arguments a, Go go) {
  const CornerSizes sizes = {integer(a[1], "aperture"), integer(a[2], "block")};
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "image", [&](auto type) {
    const auto image = input<typename decltype(type)::type>(a[0]);
    const auto out = output<float, Channels>(a[3]);
    unlocked([&] { go(image, out, sizes); });
    return none();
  });
}

PyObject* min_eigen(Arguments a) {
  return corners<1>(a, [](const auto& image, const auto& out, CornerSizes sizes) {
    nuqi::min_eigen(image, out, sizes, scratch());
  });
}
PyObject* eigen_vectors(Arguments a) {
  return corners<6>(a, [](const auto& image, const auto& out, CornerSizes sizes) {
    nuqi::eigen_vectors(image, out, sizes, scratch());
  });
}

// (image, metric, out); a metric is a word, or the weights of its steps
PyObject* distance_transform(Arguments a) {
  static constexpr const char* kWords[] = {"chessboard", "city_block", "euclidean_3x3",
                                           "euclidean_5x5"};
  static constexpr Distance kDistances[] = {Distance::chessboard, Distance::city_block,
                                            Distance::euclidean_3x3, Distance::euclidean_5x5};
  DistanceSteps steps{};
  if (PyTuple_Check(a[1])) {
    if (PyTuple_GET_SIZE(a[1]) != 2 && PyTuple_GET_SIZE(a[1]) != 3) {
      PyErr_Format(PyExc_ValueError, "metric: expected two or three weights, got %zd",
                   PyTuple_GET_SIZE(a[1]));
      throw Raised{};
    }
    float* const weights[] = {&steps.beside, &steps.diagonal, &steps.knight};
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(a[1]); ++i)
      *weights[i] = real(PyTuple_GET_ITEM(a[1], i), "metric");
  } else {
    steps = distance_steps(kDistances[word(a[1], "metric", kWords, 4)]);
  }
  const View<const std::uint8_t> image = mask_of(a[0], "image").view();
  const auto out = output<float>(a[2]);
  unlocked([&] { nuqi::distance_transform(image, out, steps); });
  return none();
}

const Operation kOperations[] = {
    {"canny", 5, canny},
    {"canny_thresholds", 3, canny_thresholds},
    {"canny_from", 5, canny_from},
    {"min_eigen", 4, min_eigen},
    {"eigen_vectors", 4, eigen_vectors},
    {"distance_transform", 3, distance_transform},
    {"match_template", 4, match_template},
};

}  // namespace

Operations feature_operations() { return {kOperations, std::size(kOperations)}; }

}  // namespace nuqi::python
