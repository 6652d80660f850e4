"""Objects as regions: a threshold, an opening, fills."""

import numpy as np
import nuqi
from scene import frame, show


def label(mask: np.ndarray) -> tuple[np.ndarray, list[nuqi.Region]]:
    """Gives each object of a mask a grey of its own, and says where it is."""
    labels, regions = mask.copy(), []
    while (labels == 255).any():
        row, column = np.argwhere(labels == 255)[0]
        regions.append(nuqi.flood_fill(labels, (row, column), 40 * len(regions) + 40, 8, in_place=True).region)
    return labels, regions


def pictures() -> dict[str, np.ndarray]:
    image = frame(5)
    mask = np.where(image > 145, np.uint8(255), np.uint8(0))
    disc = np.hypot(*np.indices((7, 7)) - 3) < 3.5
    opened = nuqi.dilate(nuqi.erode(mask, disc), disc)
    labels, regions = label(opened)
    for region in regions:
        print(f"{region.area} pixels, {region.height} x {region.width}, from {region.top, region.left} on")
    return {"the image": image, "bright": mask, "opened": opened, "regions": labels}


if __name__ == "__main__":
    show("segmentation", pictures())
