"""Norms of images and of their differences."""

from __future__ import annotations

from nuqi import _native
from nuqi._types import Any, Array, of_channels


def norm_inf(image: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Find the largest magnitude of an image.

    The greatest distance of a pixel from 0.

    Parameters
    ----------
    image : (h, w) or (h, w, 3) array of uint8, int8 or float32
        The image.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    float or (3,) array of float64
        The norm, exact for bytes whatever their number; of each channel where none is named.

    Raises
    ------
    StatusError
        As for `mean`.
    TypeError
        An array has another type or shape, or its rows are not contiguous.

    See Also
    --------
    min_max : The extremes with their signs and places.
    norm_diff_inf : The same of a difference.

    Examples
    --------
    >>> nuqi.norm_inf(np.array([[3, -4]], np.int8))
    4.0
    """
    return of_channels(image, channel, lambda one: _native.norm_inf(image, mask, one))


def norm_l1(image: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Sum up the magnitudes of an image.

    Of a mask of 0 and 255 it is 255 times the number of pixels.

    Parameters
    ----------
    image : (h, w) or (h, w, 3) array of uint8, int8 or float32
        The image.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    float or (3,) array of float64
        The norm, exact for bytes whatever their number; of each channel where none is named.

    Raises
    ------
    StatusError
        As for `mean`.
    TypeError
        An array has another type or shape, or its rows are not contiguous.

    See Also
    --------
    mean : The sum of unsigned pixels over their number.
    norm_diff_l1 : The same of a difference.

    Examples
    --------
    >>> nuqi.norm_l1(np.array([[3, -4]], np.int8))
    7.0
    """
    return of_channels(image, channel, lambda one: _native.norm_l1(image, mask, one))


def norm_l2(image: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Compute the root of the sum of an image's squares.

    Its square is the energy of an image; divided by the root of the number of pixels it is their root mean
    square.

    Parameters
    ----------
    image : (h, w) or (h, w, 3) array of uint8, int8 or float32
        The image.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    float or (3,) array of float64
        The norm, exact for bytes whatever their number; of each channel where none is named.

    Raises
    ------
    StatusError
        As for `mean`.
    TypeError
        An array has another type or shape, or its rows are not contiguous.

    See Also
    --------
    mean_std : The deviation from the mean.
    norm_diff_l2 : The same of a difference.

    Examples
    --------
    >>> nuqi.norm_l2(np.array([[3, -4]], np.int8))
    5.0
    """
    return of_channels(image, channel, lambda one: _native.norm_l2(image, mask, one))


def norm_diff_inf(a: Array, b: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Find the largest difference of two images.

    0 exactly if the images are equal: the worst error of a reconstruction.

    Parameters
    ----------
    a : (h, w) or (h, w, 3) array of uint8, int8 or float32
        One image.
    b : array of the same shape and type
        The other one.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    float or (3,) array of float64
        The norm, exact for bytes whatever their number; of each channel where none is named.

    Raises
    ------
    StatusError
        As for `mean`. The sizes differ.
    TypeError
        An array has another type or shape, or its rows are not contiguous.

    See Also
    --------
    abs_diff : All differences, as an image.
    norm_rel_inf : The same relative to the second image.

    Examples
    --------
    >>> nuqi.norm_diff_inf(np.array([[10, 20]], np.uint8), np.array([[13, 16]], np.uint8))
    4.0
    """
    return of_channels(a, channel, lambda one: _native.norm_diff_inf(a, b, mask, one))


def norm_diff_l1(a: Array, b: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Sum up the differences of two images.

    Divided by the number of pixels it is their mean absolute error.

    Parameters
    ----------
    a : (h, w) or (h, w, 3) array of uint8, int8 or float32
        One image.
    b : array of the same shape and type
        The other one.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    float or (3,) array of float64
        The norm, exact for bytes whatever their number; of each channel where none is named.

    Raises
    ------
    StatusError
        As for `mean`. The sizes differ.
    TypeError
        An array has another type or shape, or its rows are not contiguous.

    See Also
    --------
    abs_diff : All differences, as an image.
    norm_rel_l1 : The same relative to the second image.

    Examples
    --------
    >>> nuqi.norm_diff_l1(np.array([[10, 20]], np.uint8), np.array([[13, 16]], np.uint8))
    7.0
    """
    return of_channels(a, channel, lambda one: _native.norm_diff_l1(a, b, mask, one))


def norm_diff_l2(a: Array, b: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Compute the root of the sum of squared differences.

    With n pixels, ``20 * log10(255 * sqrt(n) / norm)`` is the peak signal-to-noise ratio of bytes in decibels.

    Parameters
    ----------
    a : (h, w) or (h, w, 3) array of uint8, int8 or float32
        One image.
    b : array of the same shape and type
        The other one.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    float or (3,) array of float64
        The norm, exact for bytes whatever their number; of each channel where none is named.

    Raises
    ------
    StatusError
        As for `mean`. The sizes differ.
    TypeError
        An array has another type or shape, or its rows are not contiguous.

    See Also
    --------
    match_template : The square of it at every place.
    norm_rel_l2 : The same relative to the second image.

    Examples
    --------
    >>> nuqi.norm_diff_l2(np.array([[10, 20]], np.uint8), np.array([[13, 16]], np.uint8))
    5.0
    """
    return of_channels(a, channel, lambda one: _native.norm_diff_l2(a, b, mask, one))


def norm_rel_inf(a: Array, b: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Find the largest difference, relative to the second image's.

    The worst error in units of the second image's largest magnitude.

    Parameters
    ----------
    a : (h, w) or (h, w, 3) array of uint8, int8 or float32
        One image.
    b : array of the same shape and type
        The other one.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    float or (3,) array of float64
        The norm, exact for bytes whatever their number; of each channel where none is named. Where the
        second image's is 0, the numerator times 2^52.

    Raises
    ------
    StatusError
        As for `mean`. The sizes differ.
    TypeError
        An array has another type or shape, or its rows are not contiguous.

    See Also
    --------
    norm_diff_inf : The numerator.

    Examples
    --------
    >>> nuqi.norm_rel_inf(np.array([[10, 20]], np.uint8), np.array([[13, 16]], np.uint8))
    0.25
    """
    return of_channels(a, channel, lambda one: _native.norm_rel_inf(a, b, mask, one))


def norm_rel_l1(a: Array, b: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Sum up differences, relative to the second image's sum.

    A share: 0.01 says that all errors together are one percent of all pixels together.

    Parameters
    ----------
    a : (h, w) or (h, w, 3) array of uint8, int8 or float32
        One image.
    b : array of the same shape and type
        The other one.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    float or (3,) array of float64
        The norm, exact for bytes whatever their number; of each channel where none is named. Where the
        second image's is 0, the numerator times 2^52.

    Raises
    ------
    StatusError
        As for `mean`. The sizes differ.
    TypeError
        An array has another type or shape, or its rows are not contiguous.

    See Also
    --------
    norm_diff_l1 : The numerator.

    Examples
    --------
    >>> nuqi.norm_rel_l1(np.array([[10, 20]], np.uint8), np.array([[13, 16]], np.uint8))
    0.2413793103448276
    """
    return of_channels(a, channel, lambda one: _native.norm_rel_l1(a, b, mask, one))


def norm_rel_l2(a: Array, b: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Compute the l2 norm of the difference over that of the second.

    The usual relative error of a reconstruction, independent of scale and size.

    Parameters
    ----------
    a : (h, w) or (h, w, 3) array of uint8, int8 or float32
        One image.
    b : array of the same shape and type
        The other one.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    float or (3,) array of float64
        The norm, exact for bytes whatever their number; of each channel where none is named. Where the
        second image's is 0, the numerator times 2^52.

    Raises
    ------
    StatusError
        As for `mean`. The sizes differ.
    TypeError
        An array has another type or shape, or its rows are not contiguous.

    See Also
    --------
    norm_diff_l2 : The numerator.

    Examples
    --------
    >>> nuqi.norm_rel_l2(np.array([[10, 20]], np.uint8), np.array([[13, 16]], np.uint8))
    0.24253562503633297
    """
    return of_channels(a, channel, lambda one: _native.norm_rel_l2(a, b, mask, one))
