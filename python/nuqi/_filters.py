"""Derivatives, box sums, pyramid levels."""

from __future__ import annotations

import numpy as np

from nuqi import _native
from nuqi._types import Any, Array, dtype_of, shape_of


def result_type(image: Array) -> Any:
    """What filters write: int16 for bytes, float32 for floats."""
    return np.float32 if np.dtype(dtype_of(image)).kind == "f" else np.int16


def _out(image: Array, out: Array | None) -> Array:
    return np.empty(shape_of(image), result_type(image)) if out is None else out


def sobel3x3(image: Array, *, derivative: str = "dx", out: Array | None = None) -> Array:
    """
    Compute a 3x3 derivative by Sobel's weights.

    The difference of two columns, or rows, smoothed across by 1 2 1; 'd2x' and 'd2y' are 1 -2 1 so smoothed,
    and 'dxdy' is the difference of both. Bytes do not saturate: the first derivatives lie within -1020 to 1020.

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

    See Also
    --------
    scharr : Weights that are more alike in all directions.
    sobel : Larger windows and any orders.
    canny_from : Edges from the pair of them.

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


def scharr(image: Array, *, derivative: str = "dx", shift: int = 0, out: Array | None = None) -> Array:
    """
    Compute a 3x3 derivative by Scharr's weights, which are alike in all directions.

    The difference of two columns, or rows, smoothed across by 3 10 3: the angle of ('dx', 'dy') is that of the
    gradient more exactly than by Sobel's weights. Of bytes it lies within -4080 to 4080.

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

    See Also
    --------
    sobel3x3 : Sobel's weights, and second derivatives.
    arctan : The angle of the gradient, of floats.

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


def box_sum(image: Array, *, size: int = 3, out: Array | None = None) -> Array:
    """
    Sum up the pixels in a square window around each.

    A blur without a division, so that nothing is rounded. Three of them after each other, each divided, are
    nearly a Gaussian blur.

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

    See Also
    --------
    BoxSum : The same strip by strip, for images larger than memory.
    pyramid_down : A Gaussian blur, to half the size.
    mean : The mean of a whole image.

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
    image: Array, *, x_order: int = 1, y_order: int = 0, aperture: int = 3, out: Array | None = None
) -> Array:
    """
    Compute a derivative of any orders by Sobel's operator.

    Differences of the given orders, smoothed to the aperture by the binomial weights 1 2 1, 1 4 6 4 1 or 1 6 15
    20 15 6 1. First ones are positive where values grow to the right and downwards. Larger windows see less
    noise and blur more; of size 7 derivatives of bytes may saturate.

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

    See Also
    --------
    sobel3x3 : The 3x3 ones, faster.
    Sobel : The same strip by strip, for images larger than memory.
    laplace : Both second derivatives together.

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


def laplace(image: Array, *, size: int = 3, out: Array | None = None) -> Array:
    """
    Compute the sum of the second derivatives along x and y.

    Spots and lines of the window's size stand out, whatever their direction; edges are where the sign changes.

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

    See Also
    --------
    sobel : Single derivatives.
    Laplace : The same strip by strip, for images larger than memory.

    Examples
    --------
    >>> int(nuqi.laplace(np.array([[0, 0, 0], [0, 1, 0], [0, 0, 0]], np.uint8))[1, 1])
    -8
    """
    out = _out(image, out)
    _native.laplace(image, out, size)
    return out


def pyramid_down(image: Array, *, out: Array | None = None) -> Array:
    """
    Halve the size of an image, smoothed by 1 4 6 4 1 along both axes.

    Levels of a pyramid, each a quarter of the pixels: search small images first, then look closer where
    something was found. Even sizes alone have a half: cut an odd row or column off, ``image[: h // 2 * 2, : w
    // 2 * 2]``.

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

    See Also
    --------
    pyramid_up : Back to the size before.
    match_template : A search that gains by it.

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
        shape = shape_of(image)
        out = np.empty((*(n // 2 for n in shape[:2]), *shape[2:]), dtype_of(image))
    _native.pyramid_down(image, out)
    return out


def pyramid_up(image: Array, *, out: Array | None = None) -> Array:
    """
    Double the size of an image, smoothed by 1 4 6 4 1 along both axes.

    An image of `pyramid_down` comes back smoother; ``image - pyramid_up(pyramid_down(image))``, of floats, is
    what was lost: a level of a Laplacian pyramid.

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

    See Also
    --------
    pyramid_down : The opposite.
    abs_diff : What was lost, of bytes.

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
        shape = shape_of(image)
        out = np.empty((*(2 * n for n in shape[:2]), *shape[2:]), dtype_of(image))
    _native.pyramid_up(image, out)
    return out
