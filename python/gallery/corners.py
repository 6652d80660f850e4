"""The strongest corners, and a template found again."""

import numpy as np
import nuqi
from scene import frame, show

image = frame(3)
strength = nuqi.min_eigen(image)
marked = np.repeat(image[..., np.newaxis], 3, axis=2)
rest = strength.copy()
for _ in range(12):
    row, column = nuqi.min_max(rest).max_at
    around = np.s_[max(row - 6, 0) : row + 7, max(column - 6, 0) : column + 7]
    rest[around] = 0
    marked[around] = (255, 60, 0)

scores = nuqi.match_template(frame(4), image[145:195, 215:250])
row, column = nuqi.min_max(scores).max_at
found = np.repeat(frame(4)[..., np.newaxis], 3, axis=2)
found[row : row + 50, column : column + 35, 0] = 255

show("corners", {"corners": marked, "scores of the door": scores, "the door, found": found})
