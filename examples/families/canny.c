/* The outline of a white square on black. Its edges are sharp, with one magnitude on either side, and of two
 * equal neighbours neither is an edge: a number that differs between neighbours breaks the ties. */
#include <nuqi/nuqi.h>
#include <stdio.h>
#include <stdlib.h>

enum { width = 12, height = 6 };

static void print(const uint8_t edges[height][width]) {
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) putchar(edges[y][x] != 0 ? '#' : '.');
    putchar(' ');
  }
}

int main(void) {
  uint8_t image[height][width] = {{0}}, edges[height][width];
  int16_t dx[height][width], dy[height][width];
  for (int y = 2; y < 4; ++y)
    for (int x = 4; x < 8; ++x) image[y][x] = 255;
  const int32_t step = sizeof dx[0];
  const float low = 200, high = 400;
  int32_t size;
  RoiSize roi = {width, height};
  if (nuqiCannyGetSize(roi, &size) != StatusOk) return 1;
  void* buffer = malloc((size_t)size);
  if (buffer == NULL) return 1;
  if (nuqiSobel3x3_Dx_8u16s_C1R(image[0], width, dx[0], step, roi) != StatusOk) return 1;
  if (nuqiSobel3x3_Dy_8u16s_C1R(image[0], width, dy[0], step, 0, roi) != StatusOk) return 1;

  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const int k = x % 2 + 2 * (y % 2);
      dx[y][x] = (int16_t)(4 * dx[y][x] + (dx[y][x] < 0 ? -k : k));
      dy[y][x] = (int16_t)(4 * dy[y][x]);
    }
  if (nuqiCanny_16s8u_C1R(dx[0], step, dy[0], step, edges[0], width, roi, 4 * low + 3, 4 * high + 3,
                          buffer) != StatusOk)
    return 1;
  print((const uint8_t(*)[width])edges);
  putchar('\n');
  free(buffer);
  return 0;
}
/* prints: ............ .....##..... ....#..#.... ....####.... ............ ............ */
