"""Derivatives, box sums, pyramid levels."""

from __future__ import annotations

from typing import Optional

import numpy as np

from nuqi import _native
from nuqi._types import Array


def _out(image: Array, out: Optional[Array]) -> Array:
    """What filters write: int16 for bytes, float32 for floats."""
    if out is not None:
        return out
    return np.empty(np.shape(image), np.float32 if np.result_type(image).kind == "f" else np.int16)


def sobel3x3(image: Array, *, derivative: str = "dx", out: Optional[Array] = None) -> Array:
    """
    Compute a 3x3 derivative by Sobel's weights.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image, of two rows or more. Pixels beyond an edge equal the edge pixel.
    derivative : str
        'dx' is positive where values grow to the right, 'dy' where they grow downwards; for bytes also 'd2x',
        'd2y' and 'dxdy'.
    out : (h, w) array of int16, of float32 for float32, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h, w) array of int16 or float32
        The derivative, 8 times that of a unit's distance along one axis.

    Raises
    ------
    StatusError
        The sizes differ, the image has less than two rows, the derivative does not exist for its type, or `out`
        overlaps it.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    References
    ----------
    I. Sobel and G. Feldman, "A 3x3 isotropic gradient operator for image processing", 1968.

    Examples
    --------
    >>> nuqi.sobel3x3(np.array([[0, 1, 2], [0, 1, 2]], np.uint8))
    array([[4, 8, 4],
           [4, 8, 4]], dtype=int16)
    """
    out = _out(image, out)
    _native.sobel3x3(image, out, derivative)
    return out


def scharr(image: Array, *, derivative: str = "dx", shift: int = 0, out: Optional[Array] = None) -> Array:
    """
    Compute a 3x3 derivative by Scharr's weights, which are alike in all directions.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image, of two rows or more. Pixels beyond an edge equal the edge pixel.
    derivative : str
        'dx' is positive where values grow to the right, 'dy' where they grow downwards.
    shift : int
        The result is divided by 2 to this power.
    out : (h, w) array of int16, of float32 for float32, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h, w) array of int16 or float32
        The derivative, 32 times that of a unit's distance along one axis.

    Raises
    ------
    StatusError
        As for `sobel3x3`, or a negative shift.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    References
    ----------
    H. Scharr, "Optimal operators in digital image processing", Heidelberg, 2000.

    Examples
    --------
    >>> nuqi.scharr(np.array([[0, 1, 2], [0, 1, 2]], np.uint8), shift=2)
    array([[4, 8, 4],
           [4, 8, 4]], dtype=int16)
    """
    out = _out(image, out)
    _native.scharr(image, out, derivative, shift)
    return out


def box_sum(image: Array, *, size: int = 3, out: Optional[Array] = None) -> Array:
    """
    Sum up the pixels in a square window around each.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image. Pixels beyond an edge equal the edge pixel.
    size : {3, 5, 7}
        The window's side.
    out : (h, w) array of int16, of float32 for float32, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h, w) array of int16 or float32
        The sums, exact for bytes. Divide them by size * size for a mean.

    Raises
    ------
    StatusError
        The sizes differ, the image is empty, `size` is another, or `out` overlaps the image.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    Examples
    --------
    >>> sums = nuqi.box_sum(np.array([[0, 0, 0], [0, 90, 0], [0, 0, 0]], np.uint8))
    >>> sums // 9
    array([[10, 10, 10],
           [10, 10, 10],
           [10, 10, 10]], dtype=int16)
    """
    out = _out(image, out)
    _native.box_sum(image, out, size)
    return out


def sobel(
    image: Array, *, x_order: int = 1, y_order: int = 0, aperture: int = 3, out: Optional[Array] = None
) -> Array:
    """
    Compute a derivative of any orders by Sobel's operator.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image. Pixels beyond an edge equal the edge pixel.
    x_order : int
        The order along x, from 0 to aperture - 1.
    y_order : int
        The order along y, from 0 to aperture - 1.
    aperture : {3, 5, 7}
        The side of the window.
    out : (h, w) array of int16, of float32 for float32, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h, w) array of int16 or float32
        The derivative; int16 saturates.

    Raises
    ------
    StatusError
        As for `box_sum`, or an order is out of its range.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    References
    ----------
    I. Sobel and G. Feldman, "A 3x3 isotropic gradient operator for image processing", 1968.

    Examples
    --------
    >>> nuqi.sobel(np.array([[0, 1, 4], [0, 1, 4]], np.uint8), x_order=2)
    array([[  4,   8, -12],
           [  4,   8, -12]], dtype=int16)
    """
    out = _out(image, out)
    _native.sobel(image, out, x_order, y_order, aperture)
    return out


def laplace(image: Array, *, size: int = 3, out: Optional[Array] = None) -> Array:
    """
    Compute the sum of the second derivatives along x and y.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image. Pixels beyond an edge equal the edge pixel.
    size : {3, 5, 7}
        The side of the window.
    out : (h, w) array of int16, of float32 for float32, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h, w) array of int16 or float32
        The result, negative on bright spots; int16 saturates at size 7.

    Raises
    ------
    StatusError
        As for `box_sum`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    Examples
    --------
    >>> int(nuqi.laplace(np.array([[0, 0, 0], [0, 1, 0], [0, 0, 0]], np.uint8))[1, 1])
    -8
    """
    out = _out(image, out)
    _native.laplace(image, out, size)
    return out


def pyramid_down(image: Array, *, out: Optional[Array] = None) -> Array:
    """
    Halve the size of an image, smoothed by 1 4 6 4 1 along both axes.

    Parameters
    ----------
    image : (h, w) or (h, w, 3) array of uint8, int8 or float32
        The image, of even height and width. It is mirrored at the edges.
    out : (h // 2, w // 2) or (h // 2, w // 2, 3) array of the same type, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h // 2, w // 2) or (h // 2, w // 2, 3) array of the same type
        The next smaller level of a Gaussian pyramid.

    Raises
    ------
    StatusError
        A height or width is odd or 0, `out` has another size, or overlaps the image.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    References
    ----------
    P. Burt and E. Adelson, "The Laplacian pyramid as a compact image code", IEEE Trans. on Communications
    31(4), 1983.

    Examples
    --------
    >>> nuqi.pyramid_down(np.full((4, 6), 7, np.uint8))
    array([[7, 7, 7],
           [7, 7, 7]], dtype=uint8)
    """
    if out is None:
        shape = np.shape(image)
        out = np.empty((*(n // 2 for n in shape[:2]), *shape[2:]), np.asanyarray(image).dtype)
    _native.pyramid_down(image, out)
    return out


def pyramid_up(image: Array, *, out: Optional[Array] = None) -> Array:
    """
    Double the size of an image, smoothed by 1 4 6 4 1 along both axes.

    Parameters
    ----------
    image : (h, w) or (h, w, 3) array of uint8, int8 or float32
        The image.
    out : (2 * h, 2 * w) or (2 * h, 2 * w, 3) array of the same type, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (2 * h, 2 * w) or (2 * h, 2 * w, 3) array of the same type
        The next larger level of a Gaussian pyramid.

    Raises
    ------
    StatusError
        The image is empty, `out` has another size, or overlaps the image.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    References
    ----------
    P. Burt and E. Adelson, "The Laplacian pyramid as a compact image code", IEEE Trans. on Communications
    31(4), 1983.

    Examples
    --------
    >>> nuqi.pyramid_up(np.full((1, 2), 7, np.uint8))
    array([[7, 7, 7, 7],
           [7, 7, 7, 7]], dtype=uint8)
    """
    if out is None:
        shape = np.shape(image)
        out = np.empty((*(2 * n for n in shape[:2]), *shape[2:]), np.asanyarray(image).dtype)
    _native.pyramid_up(image, out)
    return out
