// Norms of images, of differences, and relative ones.
#include <nuqi/hpp/norms.hpp>

#include "selection.h"

namespace nuqi::python {
namespace {

// (image, mask, channel)
template <class Go>
PyObject* norm(Arguments a, Go go) {
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "image", [&](auto type) {
    return checked(
        PyFloat_FromDouble(with_selection<typename decltype(type)::type>(a[0], a[1], a[2], go)));
  });
}

// (a, b, mask, channel)
template <class Go>
PyObject* norm_of_two(Arguments a, Go go) {
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "a", [&](auto type) {
    return checked(PyFloat_FromDouble(
        with_selection<typename decltype(type)::type>(a[0], a[1], a[2], a[3], go)));
  });
}

// clang-format off
const Operation kOperations[] = {
    {"norm_inf", 3, [](Arguments a) { return norm(a, [](const auto&... all) { return nuqi::norm_inf(all...); }); }},
    {"norm_l1", 3, [](Arguments a) { return norm(a, [](const auto&... all) { return nuqi::norm_l1(all...); }); }},
    {"norm_l2", 3, [](Arguments a) { return norm(a, [](const auto&... all) { return nuqi::norm_l2(all...); }); }},
    {"norm_diff_inf", 4, [](Arguments a) { return norm_of_two(a, [](const auto&... all) { return nuqi::norm_diff_inf(all...); }); }},
    {"norm_diff_l1", 4, [](Arguments a) { return norm_of_two(a, [](const auto&... all) { return nuqi::norm_diff_l1(all...); }); }},
    {"norm_diff_l2", 4, [](Arguments a) { return norm_of_two(a, [](const auto&... all) { return nuqi::norm_diff_l2(all...); }); }},
    {"norm_rel_inf", 4, [](Arguments a) { return norm_of_two(a, [](const auto&... all) { return nuqi::norm_rel_inf(all...); }); }},
    {"norm_rel_l1", 4, [](Arguments a) { return norm_of_two(a, [](const auto&... all) { return nuqi::norm_rel_l1(all...); }); }},
    {"norm_rel_l2", 4, [](Arguments a) { return norm_of_two(a, [](const auto&... all) { return nuqi::norm_rel_l2(all...); }); }},
};
// clang-format on

}  // namespace

Operations norm_operations() { return {kOperations, std::size(kOperations)}; }

}  // namespace nuqi::python
