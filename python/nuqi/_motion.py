"""Motion histories, angles, pixels along lines."""

from __future__ import annotations

import numpy as np

from nuqi import _native
from nuqi._types import Array, dtype_of, shape_of


def motion_history(silhouette: Array, history: Array, *, timestamp: float, duration: float) -> Array:
    """
    Keep the time of the last motion at every pixel, in place.

    Pixels that moved just now are brightest and older ones fade in steps of time, so that the gradient of the
    history shows which way things went.

    Parameters
    ----------
    silhouette : (h, w) array of uint8 or bool
        Where something moves, such as a thresholded difference of frames.
    history : (h, w) array of float32
        The times; zeros to start with.
    timestamp : float
        The time of the silhouette, in any unit.
    duration : float
        Times before timestamp - duration are forgotten, and become 0.

    Returns
    -------
    (h, w) array of float32
        The history.

    Raises
    ------
    StatusError
        The sizes differ, an array is empty, they overlap, or the duration is below 0.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    abs_diff : Silhouettes from two frames.
    arctan : The directions of a gradient.

    References
    ----------
    A. Bobick and J. Davis, "The recognition of human movement using temporal templates", IEEE PAMI 23(3), 2001.

    Examples
    --------
    >>> history = np.array([[1, 5, 9]], np.float32)
    >>> nuqi.motion_history(np.array([[0, 0, 1]], np.uint8), history, timestamp=10, duration=6)
    array([[ 0.,  5., 10.]], dtype=float32)
    """
    _native.motion_history(silhouette, history, timestamp, duration)
    return history


def arctan(y: Array, x: Array, *, out: Array | None = None) -> Array:
    """
    Compute the angles of vectors in degrees.

    A polynomial instead of the exact function, which ``np.degrees(np.arctan2(y, x)) % 360`` is: good enough for
    directions of gradients, and faster.

    Parameters
    ----------
    y : (h, w) array of float32
        The vectors' y.
    x : (h, w) array of float32
        The vectors' x.
    out : (h, w) array of float32, optional
        Where the angles go; may be `y` or `x`.

    Returns
    -------
    (h, w) array of float32
        The angles from the positive x axis towards the positive y axis, from 0 to 360, within 0.1406 degrees.

    Raises
    ------
    StatusError
        The sizes differ, an array is empty, or `out` overlaps a source without being it.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    scharr : Gradients whose angles are exact enough.
    eigen_vectors : Main directions of a neighbourhood.

    Examples
    --------
    >>> y, x = np.array([[0, 1, -1]], np.float32), np.array([[1, 1, 1]], np.float32)
    >>> nuqi.arctan(y, x).round()
    array([[ -0.,  45., 315.]], dtype=float32)
    """
    if out is None:
        out = np.empty(shape_of(y), np.float32)
    _native.arctan(y, x, out)
    return out


def sample_line(
    image: Array, *, start: tuple[int, int], end: tuple[int, int], out: Array | None = None
) -> Array:
    """
    Copy the pixels along a straight line, both ends included.

    A profile of brightness along a way through the image, without interpolation: the pixels that a drawn line
    would cover.

    Parameters
    ----------
    image : (h, w) or (h, w, 3) array of uint8 or float32
        The image.
    start : tuple of int
        The first pixel, (row, column).
    end : tuple of int
        The last pixel, (row, column).
    out : (n,) or (n, 3) array of the same type, optional
        Where they go; n is the larger of the distances along both axes, plus 1.

    Returns
    -------
    (n,) or (n, 3) array of the same type
        The pixels: the longer axis is walked pixel by pixel.

    Raises
    ------
    StatusError
        A point lies outside the image, or `out` has another length.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    mean_std : The statistics of a profile, as ``profile[np.newaxis]``.
    histogram : Those of a whole image.

    References
    ----------
    J. Bresenham, "Algorithm for computer control of a digital plotter", IBM Systems Journal 4(1), 1965.

    Examples
    --------
    >>> nuqi.sample_line(np.arange(20, dtype=np.uint8).reshape(4, 5), start=(0, 0), end=(3, 3))
    array([ 0,  6, 12, 18], dtype=uint8)
    """
    if out is None:
        pixels = max(abs(int(a) - int(b)) for a, b in zip(start, end)) + 1
        out = np.empty((min(pixels, max(shape_of(image))), *shape_of(image)[2:]), dtype_of(image))
    _native.sample_line(image, start, end, out[np.newaxis])
    return out
