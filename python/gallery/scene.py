"""What the gallery's scripts share: a drawn scene, and how pictures are saved."""

import pathlib
import sys

import numpy as np

HEIGHT, WIDTH = 240, 320


def frame(time: int = 0) -> np.ndarray:
    """A shaded ground with a house; a ball crosses it."""
    rng = np.random.default_rng(abs(time))
    y, x = np.indices((HEIGHT, WIDTH))
    image = 90 + 50 * y / HEIGHT + rng.normal(0, 2, (HEIGHT, WIDTH))
    image[110:190, 190:280] = 200
    image[150:190, 220:245] = 70
    image[(y > 60) & (y < 110) & (abs(x - 235) < y - 55)] = 150
    image[(y - 70 - time * 2) ** 2 + (x - 20 - time * 9) ** 2 < 400] = 240
    return image.clip(0, 255).astype(np.uint8)


def show(name: str, pictures: dict[str, np.ndarray]) -> None:
    """Saves pictures side by side as python-NAME.png in the folder that the command line names, or here."""
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    figure, axes = plt.subplots(1, len(pictures), figsize=(3.2 * len(pictures), 2.8), squeeze=False)
    for axis, (title, picture) in zip(axes[0], pictures.items()):
        axis.imshow(picture, cmap="gray" if picture.ndim == 2 else None)
        axis.set_title(title, fontsize=9)
        axis.axis("off")
    figure.tight_layout()
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
    figure.savefig(folder / f"python-{name}.png", dpi=72, metadata={"Software": None})
