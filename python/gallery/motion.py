"""A background model, what differs from it, and where and when it moved."""

import numpy as np
import nuqi
from scene import frame, show


def pictures() -> dict[str, np.ndarray]:
    background = frame(-20).astype(np.float32)
    history = np.zeros_like(background)
    for time in range(30):
        image = frame(time)
        moved = nuqi.abs_diff(image, background.round().astype(np.uint8)) > 30
        nuqi.motion_history(moved, history, timestamp=time + 1, duration=12)
        nuqi.accumulate_weighted(image, background, alpha=0.05, mask=~moved)
    return {"the last frame": image, "the background": background, "when it moved": history}


if __name__ == "__main__":
    show("motion", pictures())
