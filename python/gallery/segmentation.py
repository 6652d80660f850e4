"""Objects as regions: a threshold, an opening, fills."""

import numpy as np
import nuqi
from scene import frame, show

image = frame(5)
mask = np.where(image > 145, np.uint8(255), np.uint8(0))
disc = np.hypot(*np.indices((7, 7)) - 3) < 3.5
opened = nuqi.dilate(nuqi.erode(mask, disc), disc)

labels, label = opened.copy(), 0
while (labels == 255).any():
    label += 1
    row, column = np.argwhere(labels == 255)[0]
    region = nuqi.flood_fill(labels, (row, column), 40 * label, 8, in_place=True).region
    print(f"region {label}: {region.area} pixels, {region.height} x {region.width}")

show("segmentation", {"the image": image, "bright": mask, "opened": opened, "regions": labels})
