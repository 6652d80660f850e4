/* The darkest and the brightest pixel, and where they are. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t image[2][3] = {{7, 3, 9}, {5, 3, 8}};
  float least, greatest;
  PixelPoint at_least, at_greatest;
  RoiSize roi = {3, 2};
  if (nuqiMinMaxIndx_8u_C1R(image[0], 3, roi, &least, &greatest, &at_least, &at_greatest) !=
      StatusOk)
    return 1;
  printf("%g at (%d, %d), %g at (%d, %d)\n", least, (int)at_least.x, (int)at_least.y, greatest,
         (int)at_greatest.x, (int)at_greatest.y);
  return 0;
}
/* prints: 3 at (1, 0), 9 at (2, 0) */
