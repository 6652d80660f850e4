// The tour's section on the fixed 3x3 derivatives.
#include <algorithm>

#include "pictures/colours.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "How the grey levels change around each pixel: Sobel's first, second and mixed derivatives and "
    "Scharr's first derivatives, of bytes to 16-bit integers. Orange is positive, blue "
    "negative, black none.";

const std::vector<Declaration> kDeclarations = {
    {"src", "static uint8_t src[height * width];  /* grey levels */"},
    {"dst", "static int16_t dst[height * width];"},
    {"src_step", "int32_t src_step = width;"},
    {"dst_step", "int32_t dst_step = 2 * width;"},
    {"levels", "static float levels[height * width], slopes[height * width];"},
    {"step", "int32_t step = 4 * width;"},
};

template <class T>
Figure figure_of(const std::string& title, const std::string& what, const Plane<T>& plane,
                 Call call) {
  const double range = usual_range(plane);
  Figure figure(title, title + " of the picture: " + what, signed_colours(plane, range));
  figure.with(signed_legend(range)).with(std::move(call)).note(what + ".");
  return figure;
}

void add_single_precision(Section& section, const Scene& scene) {
  Plane<float> source(scene.grey.size), result(scene.grey.size);
  std::copy(scene.grey.values.begin(), scene.grey.values.end(), source.values.begin());
  const RoiSize roi = source.size;
  const float* levels = source.data();
  float* slopes = result.data();
  const int32_t step = source.step();
  Call call = NUQI_TIMED(nuqiScharr_Dx_32f_C1R(levels, step, slopes, step, roi, 5));
  section.after.push_back(figure_of("Scharr dx in single precision",
                                    "Shift 5 divides by 32, near to grey levels per pixel", result,
                                    std::move(call)));
}

}  // namespace

Section derivatives_section(const Scene& scene) {
  Section section{"derivatives", "3x3 derivatives", kText, {}, {}, {}, kDeclarations};
  section.before.emplace_back("The picture in grey", "The picture in grey levels",
                              picture_of(scene.grey));
  const RoiSize roi = scene.grey.size;
  const uint8_t* src = scene.grey.data();
  const int32_t src_step = scene.grey.step();
  Plane<int16_t> plane(roi);
  int16_t* dst = plane.data();
  const int32_t dst_step = plane.step();
  const auto show = [&](const char* title, const char* what, Call call) {
    section.after.push_back(figure_of(title, what, plane, std::move(call)));
  };
  const Plane<uint8_t> padded = plain::padded(scene.grey, 1);
  Plane<int16_t> plain_dx(roi);
  show("Sobel dx", "Orange where it gets brighter to the right",
       NUQI_TIMED(nuqiSobel3x3_Dx_8u16s_C1R(src, src_step, dst, dst_step, roi)).against([&] {
         plain::sobel_dx(padded, plain_dx);
       }));
  plain::require_same(plain_dx.values, plane.values, "nuqiSobel3x3_Dx_8u16s_C1R");
  show("Sobel dy", "Orange where it gets brighter downwards",
       NUQI_TIMED(nuqiSobel3x3_Dy_8u16s_C1R(src, src_step, dst, dst_step, 0, roi)));
  show("Sobel d²x", "Blue on bright upright lines, orange on dark ones",
       NUQI_TIMED(nuqiSobel3x3_D2x_8u16s_C1R(src, src_step, dst, dst_step, roi)));
  show("Sobel d²y", "Blue on bright level lines, orange on dark ones",
       NUQI_TIMED(nuqiSobel3x3_D2y_8u16s_C1R(src, src_step, dst, dst_step, roi)));
  show("Sobel dxdy", "Strong at corners and on slanting lines",
       NUQI_TIMED(nuqiSobel3x3_DxDy_8u16s_C1R(src, src_step, dst, dst_step, 0, roi)));
  show("Scharr dx", "As Sobel dx, truer to directions between the axes",
       NUQI_TIMED(nuqiScharr_Dx_8u16s_C1R(src, src_step, dst, dst_step, roi, 0)));
  show("Scharr dy", "As Sobel dy, truer to directions between the axes",
       NUQI_TIMED(nuqiScharr_Dy_8u16s_C1R(src, src_step, dst, dst_step, 0, roi, 0)));
  add_single_precision(section, scene);
  return section;
}

}  // namespace tools
