"""Corners, distances, template matching."""

from __future__ import annotations

import numpy as np

from nuqi import _native
from nuqi._types import Array, shape_of


def min_eigen(image: Array, *, aperture: int = 3, block: int = 3, out: Array | None = None) -> Array:
    """
    Compute how much of a corner each pixel is.

    Large at corners, small on edges and in flat regions: the places that can be found again in the next frame.
    Take those above a share, such as a hundredth, of the maximum, the greatest within some distance first.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image. Scale floats to 0 to 255 before: of those of 0 to 1 little is left.
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
        The smaller eigenvalue of the gradients around each pixel, scaled by 1 / (4^(aperture - 1) * 255 * block^2).

    Raises
    ------
    StatusError
        The sizes differ, the image is empty, `aperture` or `block` is another, or `out` overlaps the image.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    See Also
    --------
    eigen_vectors : Both eigenvalues, and the directions.
    min_max : Where the strongest corner is.
    match_template : Find it again.

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
        out = np.empty(shape_of(image), np.float32)
    _native.min_eigen(image, aperture, block, out)
    return out


def eigen_vectors(image: Array, *, aperture: int = 3, block: int = 3, out: Array | None = None) -> Array:
    """
    Compute the eigenvalues and vectors of the gradients around each pixel.

    Two large eigenvalues are a corner, one is an edge whose normal is its vector: how much an image changes
    around a pixel, and in which directions.

    Parameters
    ----------
    image : (h, w) array of uint8, int8 or float32
        The image. Scale floats to 0 to 255 before: of those of 0 to 1 little is left.
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

    See Also
    --------
    min_eigen : The smaller eigenvalue alone, faster.
    arctan : The angles of vectors.

    References
    ----------
    J. Shi and C. Tomasi, "Good features to track", CVPR 1994.

    Examples
    --------
    >>> nuqi.eigen_vectors(np.zeros((8, 9), np.uint8)).shape
    (8, 9, 6)
    """
    if out is None:
        out = np.empty((*shape_of(image), 6), np.float32)
    _native.eigen_vectors(image, aperture, block, out)
    return out


def distance_transform(
    image: Array, *, metric: str | tuple[float, ...] = "euclidean_5x5", out: Array | None = None
) -> Array:
    """
    Compute the distance of every pixel to the nearest one that is 0.

    Two passes add up steps, each with a weight of its own: 'chessboard' and 'city_block' are exact,
    'euclidean_5x5' is within 2 percent of the straight line's length and 'euclidean_3x3' within 5 percent. Of a
    mask it tells how deep inside an object a pixel lies; of ``edges == 0`` how far the nearest edge is.

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

    See Also
    --------
    erode : Exactly those pixels that are some steps inside.
    canny : Edges to measure from.

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
        out = np.empty(shape_of(image), np.float32)
    _native.distance_transform(image, tuple(metric) if np.ndim(metric) == 1 else metric, out)
    return out


def match_template(
    image: Array, template: Array, *, method: str = "coeff_normed", out: Array | None = None
) -> Array:
    """
    Score every place of a template in an image.

    A template of n pixels at every place where it lies wholly inside. The best place is the maximum of
    'corr_normed' and 'coeff_normed' and the minimum of 'sq_diff' and 'sq_diff_normed'. 'coeff_normed', from
    about -1 to 1, does not change with brightness and contrast. Where the patch or the template is flat, normed
    scores mean nothing.

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

    See Also
    --------
    min_max : The best place.
    norm_diff_l2 : The distance of two images of one size.
    min_eigen : Templates that can be found again well.

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
        sizes = [max(0, n - m + 1) for n, m in zip(shape_of(image), shape_of(template))]
        out = np.empty(sizes, np.float32)
    _native.match_template(image, template, method, out)
    return out
