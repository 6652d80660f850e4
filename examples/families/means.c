/* The mean and the deviation of a picture, and the mean of a large one in stripes: sums of bytes wrap, so a call
 * takes fewer than 8,421,505 pixels. */
#include <nuqi/nuqi.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(void) {
  const uint8_t small[2][2] = {{10, 20}, {30, 40}};
  double mean, deviation;
  RoiSize two = {2, 2};
  if (nuqiMean_StdDev_8u_C1R(small[0], 2, two, &mean, &deviation) != StatusOk) return 1;
  printf("%g +- %.3f, ", mean, deviation);

  enum { width = 6000, height = 4000, step = 500 };
  uint8_t* white = malloc((size_t)width * height);
  if (white == NULL) return 1;
  memset(white, 255, (size_t)width * height);
  double total = 0;
  for (int y = 0; y < height; y += step) {
    RoiSize roi = {width, height - y < step ? height - y : step};
    double unused;
    if (nuqiMean_StdDev_8u_C1R(white + (size_t)y * width, width, roi, &mean, &unused) != StatusOk)
      return 1;
    total += mean * roi.height / height;
  }
  printf("%g\n", total);
  free(white);
  return 0;
}
/* prints: 25 +- 11.180, 255 */
