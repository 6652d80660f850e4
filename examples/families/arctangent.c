/* Directions of gradients, clockwise from the right where y points downwards. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const float dx[4] = {1, 1, 0, -1}, dy[4] = {0, 1, 1, 1};
  float degrees[4];
  if (nuqibFastArctan_32f(dy, dx, degrees, 4) != StatusOk) return 1;
  for (int i = 0; i < 4; ++i) printf("%d ", (int)(degrees[i] + 0.5F));
  putchar('\n');
  return 0;
}
/* prints: 0 45 90 135 */
