"""The same work by nuqi and by what Debian has for it: one thread, 640x480 and 4K. table.py runs it.

Names of tests are "operation-library-size"; what differs in the results stands beside the work.
"""

from __future__ import annotations

from typing import Any, Callable

import numpy as np
import nuqi
import pytest
import skimage.feature
import skimage.filters
import skimage.morphology
import skimage.segmentation
import skimage.transform
from PIL import Image, ImageChops, ImageDraw, ImageFilter
from scipy import ndimage

SIZES = {"640x480": (480, 640), "4K": (2160, 3840)}


def scene(shape: tuple[int, int]) -> np.ndarray:
    """Bright discs on a shaded ground, with noise."""
    rng = np.random.default_rng(1)
    y, x = np.indices(shape)
    image = 60 + 40 * y / shape[0] + rng.normal(0, 4, shape)
    for _ in range(40):
        row, column, radius = rng.integers(0, shape[0]), rng.integers(0, shape[1]), rng.integers(8, 60)
        image[(y - row) ** 2 + (x - column) ** 2 < radius**2] += 70
    return image.clip(0, 255).astype(np.uint8)


def filled_by_pillow(picture: Image.Image) -> None:
    ImageDraw.floodfill(picture, (0, 0), 9)


# operation: library: (what prepares its arguments from a scene, the work, what differs in the result)
Work = tuple[Callable[[np.ndarray], Any], Callable[[Any], Any], str]
same = lambda image: image  # noqa: E731
pillow = Image.fromarray
floats = lambda image: image.astype(np.float32)  # noqa: E731
pair = lambda image: (image, image[::-1].copy(), np.empty_like(image))  # noqa: E731
average = lambda image: (image, floats(image))  # noqa: E731
islands = lambda image: np.where(image > 140, np.uint8(255), np.uint8(0))  # noqa: E731
template = lambda image: (image, image[40:56, 60:76].copy())  # noqa: E731

WORK: dict[str, dict[str, Work]] = {
    "abs_diff": {
        "nuqi": (pair, lambda a: nuqi.abs_diff(a[0], a[1], out=a[2]), "nothing is allocated"),
        "NumPy": (pair, lambda a: np.where(a[0] > a[1], a[0] - a[1], a[1] - a[0]), ""),
        "Pillow": (lambda i: (pillow(i), pillow(i[::-1])), lambda a: ImageChops.difference(*a), ""),
    },
    "accumulate_weighted": {
        "nuqi": (average, lambda a: nuqi.accumulate_weighted(*a, alpha=0.1), ""),
        "NumPy": (average, lambda a: np.add(a[1], np.float32(0.1) * (a[0] - a[1]), out=a[1]), ""),
    },
    "mean_std": {
        "nuqi": (same, nuqi.mean_std, ""),
        "NumPy": (same, lambda i: (i.mean(), i.std()), "sums in double precision"),
    },
    "histogram": {
        "nuqi": (same, nuqi.histogram, ""),
        "NumPy": (same, lambda i: np.bincount(i.ravel(), minlength=256), ""),
        "Pillow": (pillow, lambda p: p.histogram(), ""),
    },
    "sobel3x3": {
        "nuqi": (same, nuqi.sobel3x3, ""),
        "scipy": (same, lambda i: ndimage.sobel(i, axis=1, output=np.int16, mode="nearest"), ""),
        "skimage": (same, skimage.filters.sobel_v, "floats, scaled"),
    },
    "box_sum 5x5": {
        "nuqi": (same, lambda i: nuqi.box_sum(i, size=5), ""),
        "scipy": (same, lambda i: ndimage.uniform_filter(i, 5, mode="nearest"), "means, rounded down"),
        "Pillow": (pillow, lambda p: p.filter(ImageFilter.BoxBlur(2)), "means"),
    },
    "erode 5x5": {
        "nuqi": (same, lambda i: nuqi.erode(i, 5), ""),
        "scipy": (same, lambda i: ndimage.grey_erosion(i, size=5, mode="nearest"), ""),
        "skimage": (same, lambda i: skimage.morphology.erosion(i, np.ones((5, 5), bool)), ""),
        "Pillow": (pillow, lambda p: p.filter(ImageFilter.MinFilter(5)), ""),
    },
    "canny": {
        "nuqi": (same, lambda i: nuqi.canny(i, 100, 200), ""),
        "skimage": (same, lambda i: skimage.feature.canny(i, sigma=0.5, low_threshold=100, high_threshold=200),
                    "smoothed first"),
    },
    "min_eigen": {
        "nuqi": (same, nuqi.min_eigen, ""),
        "skimage": (same, lambda i: skimage.feature.corner_shi_tomasi(i, sigma=1), "window by a Gaussian, doubles"),
    },
    "distance_transform": {
        "nuqi": (islands, nuqi.distance_transform, ""),
        "scipy": (islands, ndimage.distance_transform_edt, "exact Euclidean, doubles"),
        "scipy cdt": (islands, ndimage.distance_transform_cdt, "chessboard, integers"),
    },
    "pyramid_down": {
        "nuqi": (same, nuqi.pyramid_down, ""),
        "skimage": (same, lambda i: skimage.transform.pyramid_reduce(i), "another Gaussian, doubles"),
        "Pillow": (pillow, lambda p: p.reduce(2), "means of 2x2"),
    },
    "match_template 16x16": {
        "nuqi": (template, lambda a: nuqi.match_template(*a), ""),
        "skimage": (template, lambda a: skimage.feature.match_template(*a), "by Fourier transforms, doubles"),
    },
    "flood_fill": {
        "nuqi": (islands, lambda i: nuqi.flood_fill(i, (0, 0), 9), "copies first"),
        "skimage": (islands, lambda i: skimage.segmentation.flood_fill(i, (0, 0), 9, connectivity=1), "copies first"),
        "Pillow": (lambda i: pillow(islands(i)), lambda p: filled_by_pillow(p.copy()), "copies first"),
    },
}  # fmt: skip


@pytest.mark.parametrize("size", SIZES)
@pytest.mark.parametrize(("operation", "library"), [(o, each) for o, all_ in WORK.items() for each in all_])
def test_compare(benchmark: Any, operation: str, library: str, size: str) -> None:
    prepare, work, differs = WORK[operation][library]
    argument = prepare(scene(SIZES[size]))
    benchmark.extra_info.update(operation=operation, library=library, size=size, differs=differs)
    slow = size == "4K" and library != "nuqi"
    benchmark.pedantic(work, args=(argument,), rounds=2 if slow else 9, warmup_rounds=0 if slow else 2)
