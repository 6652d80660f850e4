// The families on the tour's page, one source file each.
#pragma once

#include "tour/page.h"
#include "tour/scene.h"

namespace tools {

// Each does its family's work on the scene. tour.cpp lists them in the page's order.
Section accumulation_section(const Scene& scene);
Section layout_section(const Scene& scene);
Section motion_section(const Scene& scene);
Section statistics_section(const Scene& scene);
Section derivatives_section(const Scene& scene);
Section filters_section(const Scene& scene);
Section canny_section(const Scene& scene);
Section corners_section(const Scene& scene);
Section distance_section(const Scene& scene);
Section morphology_section(const Scene& scene);
Section pyramid_section(const Scene& scene);
Section match_section(const Scene& scene);
Section fill_section(const Scene& scene);

}  // namespace tools
