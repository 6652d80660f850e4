"""Means, extrema, norms, histograms."""

from __future__ import annotations

import functools
from typing import Any, Callable, NamedTuple, Optional, Sequence, Union

import numpy as np

from nuqi import _native
from nuqi._types import Array


class MeanStd(NamedTuple):
    """A mean and a standard deviation, of all pixels or of each channel."""

    mean: Any
    std: Any


class MinMax(NamedTuple):
    """The least and the greatest pixel and where they are first met, of an image or of each channel."""

    min: Any
    max: Any
    min_at: Any
    max_at: Any


class Histogram(NamedTuple):
    """Numbers of pixels, and the levels between which they lie."""

    counts: Array
    levels: Array


class JointHistogram(NamedTuple):
    """Numbers of pixels by both channels, and the levels of each."""

    counts: Array
    levels: Array
    second_levels: Array


def _per_channel(image: Array, channel: Optional[int], find: Callable[[Optional[int]], Any]) -> Any:
    """One result, or a list with that of each channel where none is named and there are several."""
    if channel is not None or np.ndim(image) != 3:
        return find(channel)
    return [find(each) for each in range(np.shape(image)[2])]


def mean(image: Array, *, mask: Optional[Array] = None, channel: Optional[int] = None) -> Any:
    """
    Compute the mean of an image.

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
        The mean, exact for bytes whatever their number; of each channel where none is named.

    Raises
    ------
    StatusError
        The image is empty, the mask selects nothing or has another size, or there is no such channel.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    Examples
    --------
    >>> nuqi.mean(np.array([[10, 20], [30, 40]], np.uint8))
    25.0
    """
    found = _per_channel(image, channel, lambda one: _native.mean(image, mask, one))
    return np.array(found) if isinstance(found, list) else found


def mean_std(image: Array, *, mask: Optional[Array] = None, channel: Optional[int] = None) -> MeanStd:
    """
    Compute the mean and the standard deviation of an image.

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
    MeanStd
        The mean and the population's standard deviation; arrays of three where no channel of three is named.
        Sums of bytes are exact whatever their number: constant pixels have deviation 0.

    Raises
    ------
    StatusError
        As for `mean`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    Examples
    --------
    >>> nuqi.mean_std(np.array([[10, 20], [30, 40]], np.uint8)).mean
    25.0
    """
    found = _per_channel(image, channel, lambda one: _native.mean_std(image, mask, one))
    return MeanStd(*(np.array(found).T if isinstance(found, list) else found))


def min_max(image: Array, *, mask: Optional[Array] = None, channel: Optional[int] = None) -> MinMax:
    """
    Find the least and the greatest pixel, and where each is met first.

    Parameters
    ----------
    image : (h, w) or (h, w, 3) array of uint8, int8 or float32
        The image. -0.0 is below +0.0.
    mask : (h, w) array of bool or uint8, optional
        True selects a pixel, the other way round than in `numpy.ma`. An empty one is an error.
    channel : int, optional
        The channel that is meant, from 0 on.

    Returns
    -------
    MinMax
        Both values and both places, (row, column), row by row from the top; tuples of three where no channel of
        three is named.

    Raises
    ------
    StatusError
        As for `mean`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    Examples
    --------
    >>> image = np.array([[10, 20], [40, 40]], np.uint8)
    >>> found = nuqi.min_max(image)
    >>> found.max_at, int(image[found.max_at])
    ((1, 0), 40)
    """
    found = _per_channel(image, channel, lambda one: _native.min_max(image, mask, one))
    return MinMax(*(zip(*found) if isinstance(found, list) else found))


_NORM = '''
    {summary}

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
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    Examples
    --------
    >>> nuqi.{name}(np.array([[3, -4]], np.int8))
    {example}
    '''
_NORM_OF_TWO = '''
    {summary}

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
        The norm, exact for bytes whatever their number; of each channel where none is named.{relative}

    Raises
    ------
    StatusError
        As for `mean`. The sizes differ.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    Examples
    --------
    >>> nuqi.{name}(np.array([[10, 20]], np.uint8), np.array([[13, 16]], np.uint8))
    {example}
    '''


def _norm(name: str, summary: str, example: str) -> Callable[..., Any]:
    native = getattr(_native, name)

    def norm(image: Array, *, mask: Optional[Array] = None, channel: Optional[int] = None) -> Any:
        found = _per_channel(image, channel, lambda one: native(image, mask, one))
        return np.array(found) if isinstance(found, list) else found

    norm.__name__ = norm.__qualname__ = name
    norm.__doc__ = _NORM.format(name=name, summary=summary, example=example)
    return norm


def _norm_of_two(name: str, summary: str, example: str) -> Callable[..., Any]:
    native = getattr(_native, name)

    def norm(a: Array, b: Array, *, mask: Optional[Array] = None, channel: Optional[int] = None) -> Any:
        found = _per_channel(a, channel, lambda one: native(a, b, mask, one))
        return np.array(found) if isinstance(found, list) else found

    relative = "\n        Where the second image's is 0, the numerator times 2^52." if "rel" in name else ""
    norm.__name__ = norm.__qualname__ = name
    norm.__doc__ = _NORM_OF_TWO.format(name=name, summary=summary, example=example, relative=relative)
    return norm


norm_inf = _norm("norm_inf", "Find the largest magnitude of an image.", "4.0")
norm_l1 = _norm("norm_l1", "Sum up the magnitudes of an image.", "7.0")
norm_l2 = _norm("norm_l2", "Compute the root of the sum of an image's squares.", "5.0")
norm_diff_inf = _norm_of_two("norm_diff_inf", "Find the largest difference of two images.", "4.0")
norm_diff_l1 = _norm_of_two("norm_diff_l1", "Sum up the differences of two images.", "7.0")
norm_diff_l2 = _norm_of_two("norm_diff_l2", "Compute the root of the sum of squared differences.", "5.0")
norm_rel_inf = _norm_of_two("norm_rel_inf", "Find the largest difference, relative to the second image's.", "0.25")
norm_rel_l1 = _norm_of_two("norm_rel_l1", "Sum up differences, relative to the second image's sum.", "0.2413793103448276")
norm_rel_l2 = _norm_of_two("norm_rel_l2", "Compute the l2 norm of the difference over that of the second.", "0.24253562503633297")


@functools.lru_cache(maxsize=64)
def _equal_levels(bins: int) -> tuple[int, ...]:
    if not 1 <= bins <= 256:
        raise ValueError(f"levels: expected 1 to 256 bins, got {bins}")
    return tuple(256 * i // bins for i in range(bins + 1))


def _levels(levels: Union[int, Sequence[int], Array]) -> tuple[int, ...]:
    if isinstance(levels, (int, np.integer)):
        return _equal_levels(int(levels))
    return tuple(int(level) for level in levels)


def histogram(image: Array, levels: Union[int, Sequence[int], Array] = 256) -> Histogram:
    """
    Count the pixels between levels.

    Parameters
    ----------
    image : (h, w) array of uint8
        The image.
    levels : int or sequence of int
        Integers from 0 to 256 that ascend, or the number of bins that divide 0 to 256.

    Returns
    -------
    Histogram
        The counts, and the levels as an array: bin i holds the pixels from levels[i] to below levels[i + 1].
        Unlike that of `numpy.histogram`, the last bin is open: it does not hold pixels equal to the last level.

    Raises
    ------
    StatusError
        The image is empty, or the levels do not ascend from 0 to 256.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    Examples
    --------
    >>> nuqi.histogram(np.array([[0, 100, 128, 255]], np.uint8), [0, 128, 256]).counts
    array([2, 2])
    """
    bounds = _levels(levels)
    return Histogram(np.array(_native.histogram(image, bounds), np.int64), np.array(bounds, np.int64))


def joint_histogram(
    image: Array, levels: Union[int, Sequence[int], Array] = 256, second_levels: Any = None
) -> JointHistogram:
    """
    Count how often values of two channels come together.

    Parameters
    ----------
    image : (h, w, 2) array of uint8
        The image.
    levels : int or sequence of int
        Those of the first channel, as for `histogram`.
    second_levels : int or sequence of int, optional
        Those of the second channel; the same where they are left out.

    Returns
    -------
    JointHistogram
        The counts, a row for each bin of the second channel and a column for each of the first; both levels.

    Raises
    ------
    StatusError
        As for `histogram`.
    TypeError
        An array has another type or shape, its rows are not contiguous, or it is written and read-only.

    Examples
    --------
    >>> image = np.array([[[0, 200], [0, 200], [200, 0]]], np.uint8)
    >>> nuqi.joint_histogram(image, 2).counts
    array([[0, 1],
           [2, 0]])
    """
    first = _levels(levels)
    second = first if second_levels is None else _levels(second_levels)
    counts = np.array(_native.joint_histogram(image, first, second), np.int64)
    shape = (len(second) - 1, len(first) - 1)
    return JointHistogram(counts.reshape(shape), np.array(first, np.int64), np.array(second, np.int64))
