/* A picture that comes in strips: a state keeps the rows that the next strip needs. Make one for an element and a
 * width and keep it, since releasing it frees nothing. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  uint8_t strip[2][4], greatest[3][4];
  MorphState* state;
  RoiSize element = {3, 3};
  PixelPoint anchor = {1, 1};
  if (nuqiMorphologyInitAlloc(4, 1, 1, element, anchor, 0, NULL, &state) != StatusOk) return 1;
  const int32_t borders[3] = {1, 4, 2}; /* first, middle, last */
  for (int i = 0; i < 3; ++i) {
    for (int x = 0; x < 8; ++x) strip[x / 4][x % 4] = (uint8_t)i;
    RoiSize roi = {4, 2}; /* rows in, then rows out */
    if (nuqiDilateStrip_Rect_8u_C1R(strip[0], 4, greatest[0], 4, &roi, state, borders[i]) !=
        StatusOk)
      return 1;
    for (int y = 0; y < roi.height; ++y) printf("%d ", greatest[y][0]);
    printf("| ");
  }
  putchar('\n');
  return nuqiMorphologyFree(state);
}
/* prints: 0 | 1 1 | 2 2 2 | */
