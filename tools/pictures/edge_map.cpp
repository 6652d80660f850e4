// Canny's edges of a picture of any size.
#include "pictures/edge_map.h"

#include "failure.h"

namespace tools {
namespace {

struct Derivatives {
  Plane<int16_t> dx, dy;
};

Derivatives derivatives_of(const Plane<uint8_t>& grey, const std::string& edge_operator) {
  const RoiSize roi = grey.size;
  Derivatives d{Plane<int16_t>(roi), Plane<int16_t>(roi)};
  if (edge_operator == "sobel") {
    require_ok(nuqiSobel3x3_Dx_8u16s_C1R(grey.data(), grey.step(), d.dx.data(), d.dx.step(), roi),
               "nuqiSobel3x3_Dx_8u16s_C1R");
    require_ok(
        nuqiSobel3x3_Dy_8u16s_C1R(grey.data(), grey.step(), d.dy.data(), d.dy.step(), 0, roi),
        "nuqiSobel3x3_Dy_8u16s_C1R");
  } else {
    require_ok(nuqiScharr_Dx_8u16s_C1R(grey.data(), grey.step(), d.dx.data(), d.dx.step(), roi, 0),
               "nuqiScharr_Dx_8u16s_C1R");
    require_ok(
        nuqiScharr_Dy_8u16s_C1R(grey.data(), grey.step(), d.dy.data(), d.dy.step(), 0, roi, 0),
        "nuqiScharr_Dy_8u16s_C1R");
  }
  return d;
}

Plane<uint8_t> canny(const Derivatives& d, RoiSize roi, float low, float high) {
  Plane<uint8_t> edges(roi);
  int32_t size = 0;
  require_ok(nuqiCannyGetSize(roi, &size), "nuqiCannyGetSize");
  std::vector<uint8_t> buffer(static_cast<size_t>(size));
  require_ok(nuqiCanny_16s8u_C1R(d.dx.data(), d.dx.step(), d.dy.data(), d.dy.step(), edges.data(),
                                 edges.step(), roi, low, high, buffer.data()),
             "nuqiCanny_16s8u_C1R");
  return edges;
}

}  // namespace

Plane<uint8_t> edges_of(const Plane<uint8_t>& grey, const std::string& edge_operator, float low,
                        float high) {
  const Derivatives d = derivatives_of(with_two_rows(grey), edge_operator);
  return canny(d, grey.size, low, high);
}

}  // namespace tools
