"""Accumulation, absolute difference, channels."""

from __future__ import annotations

from collections.abc import Sequence

import numpy as np

from nuqi import _native
from nuqi._types import Array, dtype_of, shape_of


def accumulate(image: Array, accumulator: Array, *, mask: Array | None = None) -> Array:
    """
    Add an image to an accumulator, in place.

    Sums of many frames, to be divided by their number: a mean image, with less noise than one frame. Single
    precision counts integers to 2**24, which is 65,793 frames of white bytes.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image.
    accumulator : (h, w) array of float32
        What it is added to, in single precision. It must not overlap the image.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. Others keep their value (-0 becomes +0).

    Returns
    -------
    (h, w) array of float32
        The accumulator.

    Raises
    ------
    StatusError
        The sizes differ, an array is empty, or the accumulator overlaps another.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    accumulate_weighted : An average that forgets old frames.
    accumulate_square : Sums of squares, for the deviation of every pixel.

    Examples
    --------
    >>> sums = np.zeros((2, 2), np.float32)
    >>> nuqi.accumulate(np.array([[1, 2], [3, 4]], np.uint8), sums)
    array([[1., 2.],
           [3., 4.]], dtype=float32)
    """
    _native.accumulate(image, accumulator, mask)
    return accumulator


def accumulate_square(image: Array, accumulator: Array, *, mask: Array | None = None) -> Array:
    """
    Add the squares of an image to an accumulator, in place.

    With the sums of `accumulate` over the same n frames, the variance of every pixel is ``squares / n - (sums /
    n) ** 2``: how noisy it is, or how much moves there.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image.
    accumulator : (h, w) array of float32
        What they are added to. The square and the sum are rounded to single precision each.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`.

    Returns
    -------
    (h, w) array of float32
        The accumulator.

    Raises
    ------
    StatusError
        As for `accumulate`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    accumulate : The sums themselves.
    accumulate_product : Products of two images, for their covariance.

    Examples
    --------
    >>> sums = np.zeros((1, 3), np.float32)
    >>> nuqi.accumulate_square(np.array([[1, 2, 3]], np.uint8), sums)
    array([[1., 4., 9.]], dtype=float32)
    """
    _native.accumulate_square(image, accumulator, mask)
    return accumulator


def accumulate_product(a: Array, b: Array, accumulator: Array, *, mask: Array | None = None) -> Array:
    """
    Add the product of two images to an accumulator, in place.

    With the sums of `accumulate` of both images over the same n frames, the covariance of every pixel is
    ``products / n - (sums_a / n) * (sums_b / n)``.

    Parameters
    ----------
    a : (h, w) array of uint8, int8 or float32
        One image.
    b : (h, w) array of the same type
        The other one.
    accumulator : (h, w) array of float32
        What it is added to. The product and the sum are rounded to single precision each.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`.

    Returns
    -------
    (h, w) array of float32
        The accumulator.

    Raises
    ------
    StatusError
        As for `accumulate`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    accumulate_square : The same of an image with itself.
    accumulate : Sums of one image.

    Examples
    --------
    >>> sums = np.ones((1, 2), np.float32)
    >>> nuqi.accumulate_product(np.array([[2, 3]], np.uint8), np.array([[4, 5]], np.uint8), sums)
    array([[ 9., 16.]], dtype=float32)
    """
    _native.accumulate_product(a, b, accumulator, mask)
    return accumulator


def accumulate_weighted(image: Array, accumulator: Array, *, alpha: float, mask: Array | None = None) -> Array:
    """
    Move an accumulator towards an image by a share of their difference, in place.

    A background model: after k frames what a frame has left in the average is ``alpha * (1 - alpha) ** k`` of
    it, so that 0.05 remembers some twenty frames. Start with the first frame as float32; a mask keeps moving
    objects out.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image.
    accumulator : (h, w) array of float32
        The running average: ``accumulator += alpha * (image - accumulator)`` in single precision.
    alpha : float
        The share, mostly from 0 to 1.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. For others alpha is 0.

    Returns
    -------
    (h, w) array of float32
        The accumulator.

    Raises
    ------
    StatusError
        As for `accumulate`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    accumulate : A sum in which all frames weigh the same.
    abs_diff : What differs from the background.

    Examples
    --------
    >>> average = np.full((1, 2), 100, np.float32)
    >>> nuqi.accumulate_weighted(np.array([[200, 0]], np.uint8), average, alpha=0.25)
    array([[125.,  75.]], dtype=float32)
    """
    _native.accumulate_weighted(image, accumulator, mask, alpha)
    return accumulator


def abs_diff(a: Array, b: Array | float, *, out: Array | None = None) -> Array:
    """
    Compute the absolute difference of two images, or of an image and a number.

    Where frames differ, or how far pixels are from a value: compare the result with a threshold to have a mask.
    ``abs(a - b)`` of NumPy would wrap around for uint8.

    Parameters
    ----------
    a : (h, w) array of uint8 or float32
        One image.
    b : (h, w) array of the same type, or number
        The other one. A number is limited to 0 to 255 for uint8, and is an integer there.
    out : (h, w) array of the same type, optional
        Where the result goes; may be `a` or `b`.

    Returns
    -------
    (h, w) array of the same type
        The result: bytes do not wrap around.

    Raises
    ------
    StatusError
        The sizes differ, an array is empty, or `out` overlaps a source without being it.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    norm_diff_l1 : The sum of these differences, without an image of them.
    accumulate_weighted : A background to compare frames with.

    Examples
    --------
    >>> nuqi.abs_diff(np.array([[10, 200]], np.uint8), np.array([[30, 190]], np.uint8))
    array([[20, 10]], dtype=uint8)
    """
    if out is None:
        out = np.empty_like(a, order="C", subok=False)
    _native.abs_diff(a, b, out)
    return out


def split(image: Array, *, out: Sequence[Array] | None = None) -> tuple[Array, ...]:
    """
    Copy the channels of an image to planes.

    The pixels of a slice ``image[..., c]`` do not lie back to back, and operations refuse it: they take planes,
    and this makes all of them in one pass.

    Parameters
    ----------
    image : (h, w, 3) or (h, w, 4) array of uint8 or float32
        The image.
    out : sequence of (h, w) arrays of the same type, optional
        Where the planes go: as many as there are channels, apart from each other and from the image.

    Returns
    -------
    tuple of (h, w) arrays
        The planes.

    Raises
    ------
    StatusError
        The sizes differ, the image is empty, or `out` overlaps it or itself.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    join : Planes back to channels.
    mean : Statistics take channel= and need no planes.

    Examples
    --------
    >>> red, green, blue = nuqi.split(np.array([[[1, 2, 3], [4, 5, 6]]], np.uint8))
    >>> green
    array([[2, 5]], dtype=uint8)
    """
    if out is None:
        shape = shape_of(image)
        out = tuple(np.empty((shape[-1], *shape[:-1]), dtype_of(image))) if len(shape) == 3 else ()
    planes = tuple(out)
    _native.split(image, planes)
    return planes


def join(planes: Sequence[Array], *, out: Array | None = None) -> Array:
    """
    Make planes the channels of one image.

    The opposite of `split`: a picture from processed planes, or three grey images as red, green and blue.

    Parameters
    ----------
    planes : sequence of three or four (h, w) arrays of uint8 or float32
        The planes.
    out : (h, w, 3) or (h, w, 4) array of the same type, optional
        Where the image goes; it must not overlap a plane.

    Returns
    -------
    (h, w, 3) or (h, w, 4) array of the same type
        The image.

    Raises
    ------
    StatusError
        The sizes differ, a plane is empty, or `out` overlaps one.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    split : Channels to planes.

    Examples
    --------
    >>> plane = np.array([[1, 2]], np.uint8)
    >>> nuqi.join([plane, plane + 10, plane + 20])
    array([[[ 1, 11, 21],
            [ 2, 12, 22]]], dtype=uint8)
    """
    planes = tuple(planes)
    if len(planes) not in (3, 4):
        raise ValueError(f"planes: expected three or four, got {len(planes)}")
    if out is None:
        first = np.asanyarray(planes[0])
        out = np.empty((*first.shape, len(planes)), first.dtype)
    _native.join(planes, out)
    return out
