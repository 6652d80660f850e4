"""Edges, corners, distances, template matching."""

from __future__ import annotations

from typing import NamedTuple, Optional, Union

import numpy as np

from nuqi import _native
from nuqi._types import Array


class CannyThresholds(NamedTuple):
    """Edges start above `high` and go on above `low`."""

    low: float
    high: float


def canny(
    image: Array,
    low: Optional[float] = None,
    high: Optional[float] = None,
    *,
    operator: str = "sobel",
    out: Optional[Array] = None,
) -> Array:
    """
    Find the edges of an image.

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
        out = np.empty(np.shape(image), np.uint8)
    _native.canny(image, low, high, operator, out)
    return out


def canny_thresholds(image: Array, *, operator: str = "sobel", share: float = 0.1) -> CannyThresholds:
    """
    Find thresholds for the edges of an image, from its own derivatives.

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

    Examples
    --------
    >>> image = np.arange(64, dtype=np.uint8).reshape(8, 8)
    >>> low, high = nuqi.canny_thresholds(image)
    >>> 0 < low <= high
    True
    """
    return CannyThresholds(*_native.canny_thresholds(image, operator, share))


def canny_from(dx: Array, dy: Array, *, low: float, high: float, out: Optional[Array] = None) -> Array:
    """
    Find edges in a pair of derivative images.

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
        out = np.empty(np.shape(dx), np.uint8)
    _native.canny_from(dx, dy, low, high, out)
    return out


def min_eigen(image: Array, *, aperture: int = 3, block: int = 3, out: Optional[Array] = None) -> Array:
    """
    Compute how much of a corner each pixel is.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image; floats are scaled to 0 to 255.
    aperture : {3, 5, 7}
        The size of the derivatives.
    block : {3, 5, 7}
        The size of the window in which their products are summed. For bytes that is `aperture`, and `block` only
        scales.
    out : (h, w) array of float32, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h, w) array of float32
        The smaller eigenvalue of the gradients around each pixel, by 1 / (4^(aperture - 1) * 255 * block^2).

    Raises
    ------
    StatusError
        The sizes differ, the image is empty, `aperture` or `block` is another, or `out` overlaps the image.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    References
    ----------
    J. Shi and C. Tomasi, "Good features to track", CVPR 1994.

    Examples
    --------
    >>> image = np.zeros((12, 12), np.uint8)
    >>> image[6:, 6:] = 255
    >>> row, column = nuqi.min_max(nuqi.min_eigen(image)).max_at
    >>> abs(row - 6) <= 1 and abs(column - 6) <= 1
    True
    """
    if out is None:
        out = np.empty(np.shape(image), np.float32)
    _native.min_eigen(image, aperture, block, out)
    return out


def eigen_vectors(image: Array, *, aperture: int = 3, block: int = 3, out: Optional[Array] = None) -> Array:
    """
    Compute the eigenvalues and vectors of the gradients around each pixel.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image; floats are scaled to 0 to 255.
    aperture : {3, 5, 7}
        The size of the derivatives.
    block : {3, 5, 7}
        The size of the window in which their products are summed.
    out : (h, w, 6) array of float32, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h, w, 6) array of float32
        The eigenvalues l1 and l2, scaled as by `min_eigen`, and their unit vectors x1, y1, x2, y2. Zeros where the
        smaller value is below a hundredth of the larger.

    Raises
    ------
    StatusError
        As for `min_eigen`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    References
    ----------
    J. Shi and C. Tomasi, "Good features to track", CVPR 1994.

    Examples
    --------
    >>> nuqi.eigen_vectors(np.zeros((8, 9), np.uint8)).shape
    (8, 9, 6)
    """
    if out is None:
        out = np.empty((*np.shape(image), 6), np.float32)
    _native.eigen_vectors(image, aperture, block, out)
    return out


def distance_transform(
    image: Array, *, metric: Union[str, tuple[float, ...]] = "euclidean_5x5", out: Optional[Array] = None
) -> Array:
    """
    Compute the distance of every pixel to the nearest one that is 0.

    Parameters
    ----------
    image : (h, w) array of uint8 or bool
        The image.
    metric : str or tuple of float
        'chessboard', 'city_block', 'euclidean_3x3' or 'euclidean_5x5', or the weights, from 0 to 4096, of steps to
        the next pixel, diagonally and, for 5x5, a knight's move away.
    out : (h, w) array of float32, optional
        Where the result goes; it must not overlap the image.

    Returns
    -------
    (h, w) array of float32
        The distances in pixels, up to 4096.0, which is also that of pixels that reach none.

    Raises
    ------
    StatusError
        The sizes differ, the image is empty, or `out` overlaps it.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    References
    ----------
    G. Borgefors, "Distance transformations in digital images", Computer Vision, Graphics, and Image
    Processing 34(3), 1986.

    Examples
    --------
    >>> nuqi.distance_transform(np.array([[0, 1, 1, 1]], np.uint8))
    array([[0., 1., 2., 3.]], dtype=float32)
    """
    if out is None:
        out = np.empty(np.shape(image), np.float32)
    _native.distance_transform(image, metric, out)
    return out


def match_template(
    image: Array, template: Array, *, method: str = "coeff_normed", out: Optional[Array] = None
) -> Array:
    """
    Score every place of a template in an image.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image.
    template : (m, n) array of the same type
        The template, not larger than the image.
    method : str
        'sq_diff' sums squared differences, 0 where they are equal; 'corr' products; 'coeff' products less the
        means. 'sq_diff_normed', 'corr_normed' and 'coeff_normed' divide by the root of both energies.
    out : (h - m + 1, w - n + 1) array of float32, optional
        Where the scores go; it must overlap neither.

    Returns
    -------
    (h - m + 1, w - n + 1) array of float32
        The scores of the template's top left pixel at each place.

    Raises
    ------
    StatusError
        The template is larger than the image, `out` has another size, or overlaps one of them.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    References
    ----------
    J. P. Lewis, "Fast normalized cross-correlation", Vision Interface, 1995.

    Examples
    --------
    >>> image = np.random.default_rng(0).integers(0, 256, (20, 30), np.uint8)
    >>> scores = nuqi.match_template(image, image[5:9, 7:12])
    >>> nuqi.min_max(scores).max_at
    (5, 7)
    """
    if out is None:
        sizes = [max(0, n - m + 1) for n, m in zip(np.shape(image), np.shape(template))]
        out = np.empty(sizes, np.float32)
    _native.match_template(image, template, method, out)
    return out
