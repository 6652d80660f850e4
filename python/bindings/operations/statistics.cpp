// Means, extrema, histograms.
#include <nuqi/hpp/histogram.hpp>
#include <nuqi/hpp/means.hpp>
#include <nuqi/hpp/min_max.hpp>
#include <vector>

#include "selection.h"

namespace nuqi::python {
namespace {

// (image, mask, channel)
PyObject* mean(Arguments a) {
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "image", [&](auto type) {
    const double found = with_selection<typename decltype(type)::type>(
        a[0], a[1], a[2], [](const auto&... all) { return nuqi::mean(all...); });
    return checked(PyFloat_FromDouble(found));
  });
}

PyObject* mean_std(Arguments a) {
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "image", [&](auto type) {
    const MeanStd found = with_selection<typename decltype(type)::type>(
        a[0], a[1], a[2], [](const auto&... all) { return nuqi::mean_std(all...); });
    return checked(Py_BuildValue("(dd)", found.mean, found.deviation));
  });
}

PyObject* number(float value) { return PyFloat_FromDouble(value); }
PyObject* number(int value) { return PyLong_FromLong(value); }

// Two values and two places, (row, column).
PyObject* min_max(Arguments a) {
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "image", [&](auto type) {
    const auto found = with_selection<typename decltype(type)::type>(
        a[0], a[1], a[2], [](const auto&... all) { return nuqi::min_max(all...); });
    return checked(Py_BuildValue(
        "(NN(LL)(LL))", number(found.min), number(found.max),
        static_cast<long long>(found.min_at.y), static_cast<long long>(found.min_at.x),
        static_cast<long long>(found.max_at.y), static_cast<long long>(found.max_at.x)));
  });
}

// A tuple of integers.
std::vector<int> levels_of(PyObject* tuple) {
  std::vector<int> levels;
  for (Py_ssize_t i = 0; i < PyTuple_Size(tuple); ++i)
    levels.push_back(integer(PyTuple_GET_ITEM(tuple, i), "levels"));
  return levels;
}

PyObject* list_of(const std::vector<std::int64_t>& counts) {
  PyObject* list = checked(PyList_New(static_cast<Py_ssize_t>(counts.size())));
  for (std::size_t i = 0; i < counts.size(); ++i)
    PyList_SET_ITEM(list, static_cast<Py_ssize_t>(i), PyLong_FromLongLong(counts[i]));
  return list;
}

// (image, levels)
PyObject* histogram(Arguments a) {
  const auto image = input<std::uint8_t>(a[0]);
  const std::vector<int> levels = levels_of(a[1]);
  return list_of(unlocked([&] { return nuqi::histogram(image, levels); }));
}

// (image, levels, levels): the counts, row by row
PyObject* joint_histogram(Arguments a) {
  const auto image = input<std::uint8_t, 2>(a[0]);
  const std::vector<int> first = levels_of(a[1]);
  const std::vector<int> second = levels_of(a[2]);
  return list_of(unlocked([&] { return nuqi::joint_histogram(image, first, second).counts; }));
}

// (counts), one-dimensional
PyObject* check_histogram(Arguments a) {
  Image counts;
  if (!read_array(a[0], {"counts", Element::s32, 1, false, false, true}, &counts)) throw Raised{};
  nuqi::check_histogram(reinterpret_cast<const std::int32_t*>(counts.data), counts.width);
  return none();
}

const Operation kOperations[] = {
    {"mean", 3, mean},
    {"mean_std", 3, mean_std},
    {"min_max", 3, min_max},
    {"histogram", 2, histogram},
    {"joint_histogram", 3, joint_histogram},
    {"check_histogram", 1, check_histogram},
};

}  // namespace

Operations statistics_operations() { return {kOperations, std::size(kOperations)}; }

}  // namespace nuqi::python
