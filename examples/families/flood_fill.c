/* Paints the region around a pixel, and tells how large it is. */
#include <nuqi/nuqi.h>
#include <stdio.h>
#include <stdlib.h>

int main(void) {
  uint8_t image[3][5] = {{1, 1, 0, 2, 2}, {1, 0, 0, 2, 1}, {1, 1, 1, 0, 1}};
  int32_t size;
  FillRegion region;
  RoiSize roi = {5, 3};
  PixelPoint seed = {0, 0};
  if (nuqiFloodFillGetSize(roi, &size) != StatusOk) return 1;
  void* buffer = malloc((size_t)size);
  if (buffer == NULL) return 1;
  if (nuqiFloodFill_4Con_8u_C1IR(image[0], 5, roi, seed, 7, &region, buffer) != StatusOk) return 1;
  printf("%g pixels, %dx%d: ", region.area, (int)region.width, (int)region.height);
  for (int x = 0; x < 5; ++x) printf("%d ", image[2][x]);
  putchar('\n');
  free(buffer);
  return 0;
}
/* prints: 6 pixels, 3x3: 7 7 7 0 1 */
