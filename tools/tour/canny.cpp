// The tour's section on Canny's edges.
#include "pictures/colours.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "Edges one pixel thin, from a pair of derivatives. A pixel's strength is |dx| + |dy|; only the "
    "strongest across an edge stays. An edge starts where the strength is above "
    "<code>high</code> and goes on while it is above <code>low</code>.";

const std::vector<std::string> kCautions = {
    "Of two neighbours of equal strength across an edge both are dropped: the outline between two "
    "flat colours, as of a white square on black, vanishes. Break the ties: multiply the "
    "derivatives by four, move the larger one <code>x % 2 + 2 * (y % 2)</code> further from zero, "
    "and take four times the thresholds plus three: exactly the same strengths pass. <code>nuqi "
    "edges</code> does so.",
};

const std::vector<Declaration> kDeclarations = {
    {"src", "static uint8_t src[height * width];  /* grey levels */"},
    {"src_step", "int32_t src_step = width;"},
    {"dx", "static int16_t dx[height * width];\nint32_t dx_step = 2 * width;"},
    {"dy", "static int16_t dy[height * width];\nint32_t dy_step = 2 * width;"},
    {"dst", "static uint8_t dst[height * width];  /* 255 on edges, 0 elsewhere */"},
    {"dst_step", "int32_t dst_step = width;"},
    {"buffer",
     "int32_t bytes = 0;\n"
     "nuqiCannyGetSize(roi, &bytes);\n"
     "void* buffer = malloc((size_t)bytes);"},
};

struct Gradient {
  Plane<int16_t> dx_plane, dy_plane;
  std::vector<Call> calls;
};

Gradient sobel_of(const Plane<uint8_t>& grey) {
  Gradient gradient{Plane<int16_t>(grey.size), Plane<int16_t>(grey.size), {}};
  const RoiSize roi = grey.size;
  const uint8_t* src = grey.data();
  const int32_t src_step = grey.step();
  int16_t *dx = gradient.dx_plane.data(), *dy = gradient.dy_plane.data();
  const int32_t dx_step = gradient.dx_plane.step(), dy_step = gradient.dy_plane.step();
  gradient.calls = {
      NUQI_TIMED(nuqiSobel3x3_Dx_8u16s_C1R(src, src_step, dx, dx_step, roi)),
      NUQI_TIMED(nuqiSobel3x3_Dy_8u16s_C1R(src, src_step, dy, dy_step, 0, roi)),
  };
  return gradient;
}

Gradient scharr_of(const Plane<uint8_t>& grey) {
  Gradient gradient{Plane<int16_t>(grey.size), Plane<int16_t>(grey.size), {}};
  const RoiSize roi = grey.size;
  const uint8_t* src = grey.data();
  const int32_t src_step = grey.step();
  int16_t *dx = gradient.dx_plane.data(), *dy = gradient.dy_plane.data();
  const int32_t dx_step = gradient.dx_plane.step(), dy_step = gradient.dy_plane.step();
  gradient.calls = {
      NUQI_TIMED(nuqiScharr_Dx_8u16s_C1R(src, src_step, dx, dx_step, roi, 0)),
      NUQI_TIMED(nuqiScharr_Dy_8u16s_C1R(src, src_step, dy, dy_step, 0, roi, 0)),
  };
  return gradient;
}

// Edges of one gradient; the buffer serves every pair of thresholds.
class Canny {
 public:
  Canny(const Gradient& gradient, RoiSize size) : gradient_(gradient), edges_(size) {
    int32_t bytes = 0;
    require_ok(nuqiCannyGetSize(size, &bytes), "nuqiCannyGetSize");
    buffer_.resize(size_t(bytes));
  }

  const Plane<uint8_t>& edges() const { return edges_; }

  Call run(int low, int high) {
    const RoiSize roi = edges_.size;
    const int16_t *dx = gradient_.dx_plane.data(), *dy = gradient_.dy_plane.data();
    const int32_t dx_step = gradient_.dx_plane.step(), dy_step = gradient_.dy_plane.step();
    uint8_t* dst = edges_.data();
    const int32_t dst_step = edges_.step();
    void* buffer = buffer_.data();
    Call call = NUQI_TIMED(nuqiCanny_16s8u_C1R(dx, dx_step, dy, dy_step, dst, dst_step, roi,
                                               float(low), float(high), buffer));
    constexpr char kNames[] = "float(low), float(high)";  // the page shows the numbers
    call.text.replace(call.text.find(kNames), sizeof kNames - 1,
                      std::to_string(low) + ".0f, " + std::to_string(high) + ".0f");
    Plane<uint8_t> plain_edges(roi);
    call = std::move(call).against([&] {
      plain::canny(gradient_.dx_plane, gradient_.dy_plane, float(low), float(high), buffer_,
                   plain_edges);
    });
    plain::require_same(plain_edges.values, edges_.values, "nuqiCanny_16s8u_C1R");
    return call;
  }

 private:
  const Gradient& gradient_;
  Plane<uint8_t> edges_;
  std::vector<uint8_t> buffer_;
};

std::string code(const char* name, int value) {
  return std::string("<code>") + name + "</code> " + std::to_string(value);
}

}  // namespace

Section canny_section(const Scene& scene) {
  Section section{"canny", "Canny edges", kText, {}, {}, kCautions, kDeclarations};
  section.before.emplace_back("The picture in grey", "The picture in grey levels",
                              picture_of(scene.grey));
  const RoiSize roi = scene.grey.size;
  const Gradient sobel = sobel_of(scene.grey);
  Canny canny(sobel, roi);
  const auto edges_figure = [&](const std::string& title, int low, int high) {
    Call call = canny.run(low, high);
    Figure figure(title,
                  "Edges of strength " + std::to_string(low) + " and " + std::to_string(high) +
                      ", white on black",
                  picture_of(canny.edges()), Shrink::brightest);
    figure.with(std::move(call)).note(code("low", low) + ", " + code("high", high) + ".");
    return figure;
  };
  Call call = canny.run(100, 200);
  Figure overlay("Edges over the picture", "The darkened picture with its edges in orange",
                 edges_over(scene.grey, canny.edges()), Shrink::brightest);
  overlay.note("<code>low</code> 100, <code>high</code> 200: Sobel's derivatives, then Canny.");
  for (const Call& derivative : sobel.calls) overlay.with(derivative);
  section.after.push_back(std::move(overlay.with(std::move(call))));
  section.after.push_back(edges_figure("Faint edges too", 40, 100));
  section.after.push_back(edges_figure("Middling edges", 100, 200));
  section.after.push_back(edges_figure("Strong edges only", 200, 500));
  section.after.push_back(edges_figure("No continuation", 200, 200));

  const Gradient scharr = scharr_of(scene.grey);
  Canny with_scharr(scharr, roi);
  Call last = with_scharr.run(400, 800);
  Figure figure("With Scharr's derivatives", "Edges from Scharr's derivatives, white on black",
                picture_of(with_scharr.edges()), Shrink::brightest);
  figure.note(
      "<code>low</code> 400, <code>high</code> 800: Scharr's weights are four times as "
      "large as Sobel's.");
  for (const Call& derivative : scharr.calls) figure.with(derivative);
  section.after.push_back(std::move(figure.with(std::move(last))));
  return section;
}

}  // namespace tools
