"""A Gaussian pyramid, and the details that each level loses."""

import numpy as np
import nuqi
from scene import frame, show


def pictures() -> dict[str, np.ndarray]:
    levels = [frame(2)]
    for _ in range(3):
        levels.append(nuqi.pyramid_down(levels[-1]))

    lost = nuqi.abs_diff(levels[0], nuqi.pyramid_up(levels[1]))
    side_by_side = np.zeros((240, 600), np.uint8)
    column = 0
    for level in levels:
        height, width = level.shape
        side_by_side[:height, column : column + width] = level
        column += width
    return {"four levels": side_by_side, "what the first step loses": np.minimum(lost, 60)}


if __name__ == "__main__":
    show("pyramid", pictures())
