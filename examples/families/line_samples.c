/* The profile of an image along a line. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  uint8_t image[4][5], profile[5];
  for (int i = 0; i < 20; ++i) image[i / 5][i % 5] = (uint8_t)i;
  RoiSize roi = {5, 4};
  PixelPoint start = {0, 0}, end = {4, 2};
  const StatusCode count = nuqiSampleLine_8u_C1R(image[0], 5, roi, profile, start, end);
  for (int i = 0; i < count; ++i) printf("%d ", profile[i]);
  putchar('\n');
  return count < 0; /* a status below 0 is an error, one above it a number of pixels */
}
/* prints: 0 1 7 8 14 */
