"""The strongest corners, and a template found again."""

import numpy as np
import nuqi
from scene import frame, show

DOOR = np.s_[145:195, 215:250]


def strongest(image: np.ndarray, count: int) -> list[tuple[int, int]]:
    """Places of corners, none of them near a stronger one."""
    rest = nuqi.min_eigen(image)
    places = []
    for _ in range(count):
        row, column = nuqi.min_max(rest).max_at
        places.append((row, column))
        rest[max(row - 6, 0) : row + 7, max(column - 6, 0) : column + 7] = 0
    return places


def pictures() -> dict[str, np.ndarray]:
    image, later = frame(3), frame(4)
    marked = np.repeat(image[..., np.newaxis], 3, axis=2)
    for row, column in strongest(image, 12):
        marked[max(row - 6, 0) : row + 7, max(column - 6, 0) : column + 7] = (255, 60, 0)

    scores = nuqi.match_template(later, image[DOOR])
    row, column = nuqi.min_max(scores).max_at
    found = np.repeat(later[..., np.newaxis], 3, axis=2)
    found[row : row + 50, column : column + 35, 0] = 255
    return {"corners": marked, "scores of the door": scores, "the door, found": found}


if __name__ == "__main__":
    show("corners", pictures())
