"""Erosion, dilation, flood fills."""

from __future__ import annotations

from collections.abc import Sequence

import numpy as np

from nuqi import _native
from nuqi._results import Filled, Region
from nuqi._types import Any, Array, dtype_of, shape_of

Footprint = int | Sequence[int] | Array


def footprint_of(footprint: Footprint) -> Any:
    """An array of pixels as bytes, or (height, width)."""
    if isinstance(footprint, (int, np.integer)):
        return (int(footprint), int(footprint))
    if np.ndim(footprint) == 2:
        return np.ascontiguousarray(footprint, bool)
    return footprint


def erode(
    image: Array, footprint: Footprint = 3, *, anchor: tuple[int, int] | None = None, out: Array | None = None
) -> Array:
    """
    Take the least of the pixels under a footprint.

    Bright objects shrink and vanish if they are smaller than the footprint; dark ones grow. Of a mask of 0 and
    255 what stays are the pixels around which the whole footprint fits in.

    Parameters
    ----------
    image : (h, w), (h, w, 3) or (h, w, 4) array of uint8 or float32
        The image. Pixels beyond an edge equal the edge pixel; channels are processed each on its own.
    footprint : int, (height, width) or (m, n) array of bool
        The pixels around a pixel that count: a square, a rectangle, or those that are True. Rectangles and crosses
        are recognised, and are faster.
    anchor : tuple of int, optional
        The footprint's pixel, (row, column), that lies on the result's; the middle where it is left out.
    out : array of the image's shape and type, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    Array of the image's shape and type
        The result. Each other footprint that is neither a rectangle nor a cross keeps a block of memory until the
        program ends.

    Raises
    ------
    StatusError
        The sizes differ, the image is empty, the footprint is, the anchor lies outside it, or `out` overlaps
        the image.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    dilate : The opposite; after an erosion it is an opening.
    Morphology : The same strip by strip, for images larger than memory.
    distance_transform : How many steps inside each pixel lies.

    Examples
    --------
    >>> image = np.zeros((4, 5), np.uint8)
    >>> image[1:, 1:4] = 9
    >>> nuqi.erode(image)
    array([[0, 0, 0, 0, 0],
           [0, 0, 0, 0, 0],
           [0, 0, 9, 0, 0],
           [0, 0, 9, 0, 0]], dtype=uint8)
    """
    if out is None:
        out = np.empty(shape_of(image), dtype_of(image))
    _native.erode(image, footprint_of(footprint), anchor, out)
    return out


def dilate(
    image: Array, footprint: Footprint = 3, *, anchor: tuple[int, int] | None = None, out: Array | None = None
) -> Array:
    """
    Take the greatest of the pixels under a footprint.

    Bright objects grow and close gaps that are narrower than the footprint. Erode, then dilate for an opening,
    which removes small bright objects; dilate, then erode for a closing, which fills small dark ones.

    Parameters
    ----------
    image : (h, w), (h, w, 3) or (h, w, 4) array of uint8 or float32
        The image. Pixels beyond an edge equal the edge pixel; channels are processed each on its own.
    footprint : int, (height, width) or (m, n) array of bool
        The pixels around a pixel that count, as for `erode`. It is not reflected: for an opening or closing turn
        it by 180 degrees, ``footprint[::-1, ::-1]``, for the second step, its anchor too.
    anchor : tuple of int, optional
        The footprint's pixel, (row, column), that lies on the result's; the middle where it is left out.
    out : array of the image's shape and type, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    Array of the image's shape and type
        The result.

    Raises
    ------
    StatusError
        As for `erode`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    erode : The opposite.
    Morphology : The same strip by strip, for images larger than memory.

    Examples
    --------
    >>> image = np.zeros((3, 5), np.uint8)
    >>> image[1, 2] = 9
    >>> nuqi.dilate(image, np.array([[0, 1, 0], [1, 1, 1], [0, 1, 0]], bool))
    array([[0, 0, 9, 0, 0],
           [0, 9, 9, 9, 0],
           [0, 0, 9, 0, 0]], dtype=uint8)
    """
    if out is None:
        out = np.empty(shape_of(image), dtype_of(image))
    _native.dilate(image, footprint_of(footprint), anchor, out)
    return out


def flood_fill(
    image: Array,
    seed: tuple[int, int],
    value: float,
    connectivity: int = 4,
    *,
    lower: float | None = None,
    upper: float | None = None,
    in_place: bool = False,
) -> Filled:
    """
    Paint the connected region of a pixel.

    The paint bucket of a drawing program: label objects by filling each with another value, fill holes from the
    outside, or take the pixels around one that look like it.

    Parameters
    ----------
    image : (h, w) array of uint8 or float32
        The image.
    seed : tuple of int
        A pixel of the region, (row, column).
    value : float
        What it is painted with; for uint8 an integer from 0 to 255.
    connectivity : {4, 8}
        The number of neighbours that a pixel is connected to.
    lower : float, optional
        With `upper`, the region holds what is reached in steps from a pixel p to a neighbour of p - lower to
        p + upper, and may drift far from the seed. Without both, its pixels equal the seed.
    upper : float, optional
        See `lower`; for uint8 their sum is at most 255.
    in_place : bool
        Paint the image itself; else a copy.

    Returns
    -------
    Filled
        The image, and the region that was painted.

    Raises
    ------
    StatusError
        The seed lies outside the image, or a value or step is out of its range.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    histogram : How many pixels have each label.
    min_max : A pixel to begin with.

    Examples
    --------
    >>> image = np.array([[1, 1, 0], [0, 1, 1]], np.uint8)
    >>> painted, region = nuqi.flood_fill(image, (0, 0), 7)
    >>> painted
    array([[7, 7, 0],
           [0, 7, 7]], dtype=uint8)
    >>> region
    Region(area=4, top=0, left=0, height=2, width=3)
    """
    painted = image if in_place else np.array(image, order="C")
    if lower is None and upper is not None:
        lower = 0
    if upper is None and lower is not None:
        upper = 0
    return Filled(painted, Region(*_native.flood_fill(painted, seed, value, connectivity, lower, upper)))
