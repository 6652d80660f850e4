"""Edges."""

from __future__ import annotations

import numpy as np

from nuqi import _native
from nuqi._results import CannyThresholds
from nuqi._types import Array, shape_of


def canny(
    image: Array,
    low: float | None = None,
    high: float | None = None,
    *,
    operator: str = "sobel",
    out: Array | None = None,
) -> Array:
    """
    Find the edges of an image.

    Thin lines along the steps of brightness. Pixels whose derivative is stronger than that of their neighbours
    across the edge stay, those above `high` start edges, and those above `low` continue them. Noise gives
    edges, too: smooth before, for example by ``(nuqi.box_sum(image) // 9).astype(np.uint8)``.

    Parameters
    ----------
    image : (h, w) array of uint8 or int8
        The image.
    low : float, optional
        An edge goes on where its strength, the sum of both derivatives' magnitudes, is above this.
    high : float, optional
        An edge starts where its strength is above this. Thresholds that are left out come from the image, as
        those of `canny_thresholds`.
    operator : {'sobel', 'scharr'}
        What the derivatives come from: strengths reach 2040 or 8160.
    out : (h, w) array of uint8, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h, w) array of uint8
        The edges, 255 on them and 0 elsewhere. Of neighbours that are equally strong one is taken: a white square on
        black has an outline.

    Raises
    ------
    StatusError
        The sizes differ, the image is empty, not 0 <= low <= high, or `out` overlaps the image.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    canny_thresholds : The thresholds that are taken where none are given.
    canny_from : Edges from derivatives of your own.
    distance_transform : How far each pixel is from the edges.

    References
    ----------
    J. Canny, "A computational approach to edge detection", IEEE PAMI 8(6), 1986.

    Examples
    --------
    >>> image = np.zeros((6, 6), np.uint8)
    >>> image[:, 3:] = 200
    >>> int(nuqi.canny(image, 100, 300).any(axis=0).sum())
    1
    """
    if low is None or high is None:
        found = canny_thresholds(image, operator=operator)
        if high is None:
            high = found.high if low is None else max(found.high, low)
        if low is None:
            low = min(found.low, high)
    if out is None:
        out = np.empty(shape_of(image), np.uint8)
    _native.canny(image, low, high, operator, out)
    return out


def canny_thresholds(image: Array, *, operator: str = "sobel", share: float = 0.1) -> CannyThresholds:
    """
    Find thresholds for the edges of an image, from its own derivatives.

    What `canny` takes where no thresholds are given. Take those of a typical image for all frames of a film, so
    that edges do not flicker with the contents.

    Parameters
    ----------
    image : (h, w) array of uint8 or int8
        The image.
    operator : {'sobel', 'scharr'}
        What the derivatives come from.
    share : float
        So many of the pixels that have any strength, 0 to 1, exceed `high`.

    Returns
    -------
    CannyThresholds
        The thresholds; 2.5 times as many pixels exceed `low`. Both are 0 for a flat image.

    Raises
    ------
    StatusError
        The image is empty.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    canny : The edges.

    Examples
    --------
    >>> image = np.arange(64, dtype=np.uint8).reshape(8, 8)
    >>> low, high = nuqi.canny_thresholds(image)
    >>> 0 < low <= high
    True
    """
    return CannyThresholds(*_native.canny_thresholds(image, operator, share))


def canny_from(dx: Array, dy: Array, *, low: float, high: float, out: Array | None = None) -> Array:
    """
    Find edges in a pair of derivative images.

    For derivatives that are not those of a 3x3 operator, or that are needed for something else, too.
    Derivatives that are equal on both sides of a sharp edge lose it, by contract; `canny` breaks such ties
    before.

    Parameters
    ----------
    dx : (h, w) array of int16
        The derivative along x, such as that of `sobel3x3`.
    dy : (h, w) array of int16
        The derivative along y.
    low : float
        An edge goes on where its strength, the sum of both magnitudes, is above this.
    high : float
        An edge starts where its strength is above this.
    out : (h, w) array of uint8, optional
        Where the result goes; it must not overlap the derivatives.

    Returns
    -------
    (h, w) array of uint8
        The edges, 255 on them and 0 elsewhere. Neighbours across an edge that are equally strong suppress each other,
        other than in `canny`.

    Raises
    ------
    StatusError
        As for `canny`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    canny : Edges of an image, without this trap.
    sobel3x3 : Derivatives to begin with.
    scharr : Derivatives alike in all directions.

    References
    ----------
    J. Canny, "A computational approach to edge detection", IEEE PAMI 8(6), 1986.

    Examples
    --------
    >>> dx = np.array([[0, 10, 90, 20, 0]], np.int16)
    >>> nuqi.canny_from(dx, np.zeros_like(dx), low=30, high=60)
    array([[  0,   0, 255,   0,   0]], dtype=uint8)
    """
    if out is None:
        out = np.empty(shape_of(dx), np.uint8)
    _native.canny_from(dx, dy, low, high, out)
    return out
