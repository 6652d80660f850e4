/* An opening, erosion and then dilation, removes what is narrower than the element. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t image[3][8] = {
      {0, 9, 0, 0, 9, 9, 9, 0}, {0, 9, 0, 0, 9, 9, 9, 0}, {0, 9, 0, 0, 9, 9, 9, 0}};
  uint8_t eroded[3][8], opened[3][8];
  MorphState* state;
  RoiSize element = {3, 3};
  PixelPoint anchor = {1, 1};
  /* Width 8, 8u, one channel, a rectangle: its state serves the functions with Rect in their names. */
  if (nuqiMorphologyInitAlloc(8, 1, 1, element, anchor, 0, NULL, &state) != StatusOk) return 1;
  RoiSize roi = {8, 3};
  if (nuqiErodeStrip_Rect_8u_C1R(image[0], 8, eroded[0], 8, &roi, state, 0) != StatusOk) return 1;
  if (nuqiDilateStrip_Rect_8u_C1R(eroded[0], 8, opened[0], 8, &roi, state, 0) != StatusOk) return 1;
  for (int x = 0; x < 8; ++x) printf("%d ", opened[1][x]);
  putchar('\n');
  return nuqiMorphologyFree(state);
}
/* prints: 0 0 0 0 9 9 9 0 */
