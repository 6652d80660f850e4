/* How far each pixel is from the nearest one that is 0. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t image[3][5] = {{1, 1, 1, 1, 1}, {1, 0, 1, 1, 1}, {1, 1, 1, 1, 1}};
  float distances[3][5], weights[3];
  RoiSize roi = {5, 3};
  if (nuqiGetDistanceTransformMask(52, weights) != StatusOk) return 1; /* 5x5, nearly Euclidean */
  if (nuqiDistanceTransform_5x5_8u32f_C1R(image[0], 5, distances[0], 20, roi, weights) != StatusOk)
    return 1;
  for (int x = 0; x < 5; ++x) printf("%.1f ", distances[0][x]);
  putchar('\n');
  return 0;
}
/* prints: 1.4 1.0 1.4 2.2 3.2 */
