"""Means, extrema, histograms."""

from __future__ import annotations

import functools
import operator
from collections.abc import Sequence

import numpy as np

from nuqi import _native
from nuqi._results import Histogram, JointHistogram, MeanStd, MinMax
from nuqi._types import Any, Array, of_channels, per_channel


def mean(image: Array, *, mask: Array | None = None, channel: int | None = None) -> Any:
    """
    Compute the mean of an image.

    Where all pixels count, or those that a mask selects: the brightness of an object. Sums have as many bits as
    they need: those of large images do not wrap as they do in C.

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

    See Also
    --------
    mean_std : Both in one pass.
    accumulate_weighted : Means over time, for every pixel.

    Examples
    --------
    >>> nuqi.mean(np.array([[10, 20], [30, 40]], np.uint8))
    25.0
    """
    return of_channels(image, channel, lambda one: _native.mean(image, mask, one))


def mean_std(image: Array, *, mask: Array | None = None, channel: int | None = None) -> MeanStd:
    """
    Compute the mean and the standard deviation of an image.

    Both in one pass over the image: brightness and contrast, or the noise of a flat region.

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

    See Also
    --------
    mean : The mean alone.
    norm_l2 : The root of the sum of squares.
    min_max : The extremes.

    Examples
    --------
    >>> nuqi.mean_std(np.array([[10, 20], [30, 40]], np.uint8)).mean
    25.0
    """
    found = per_channel(image, channel, lambda one: _native.mean_std(image, mask, one))
    return MeanStd(*(np.array(found).T if isinstance(found, list) else found))


def min_max(image: Array, *, mask: Array | None = None, channel: int | None = None) -> MinMax:
    """
    Find the least and the greatest pixel, and where each is met first.

    Values and places in one pass: the best place of a template, the strongest corner, or the range to scale for
    display.

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

    See Also
    --------
    match_template : Scores whose extremum is wanted.
    min_eigen : Corners.
    mean_std : Typical values instead.

    Examples
    --------
    >>> image = np.array([[10, 20], [40, 40]], np.uint8)
    >>> found = nuqi.min_max(image)
    >>> found.max_at, int(image[found.max_at])
    ((1, 0), 40)
    """
    found = per_channel(image, channel, lambda one: _native.min_max(image, mask, one))
    return MinMax(*(zip(*found) if isinstance(found, list) else found))


@functools.lru_cache(maxsize=64)
def _equal_levels(bins: int) -> tuple[int, ...]:
    if not 1 <= bins <= 256:
        raise ValueError(f"levels: expected 1 to 256 bins, got {bins}")
    return tuple(256 * i // bins for i in range(bins + 1))


def _levels(levels: int | Sequence[int] | Array) -> tuple[int, ...]:
    try:
        return _equal_levels(operator.index(levels))  # type: ignore[arg-type]
    except TypeError:
        pass
    try:
        return tuple(map(operator.index, levels))  # type: ignore[arg-type]
    except TypeError:
        raise TypeError("levels: expected a number of bins or integers from 0 to 256 that ascend") from None


def histogram(image: Array, levels: int | Sequence[int] | Array = 256) -> Histogram:
    """
    Count the pixels between levels.

    One pass, however many bins there are. The counts have 64 bits, as images of more than 2**31 pixels need
    them.

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

    See Also
    --------
    joint_histogram : Two channels together.
    check_histogram : Refuse counts that cannot be divided by their sum.
    numpy.histogram : Floats, and a last bin that is closed.

    Examples
    --------
    >>> nuqi.histogram(np.array([[0, 100, 128, 255]], np.uint8), [0, 128, 256]).counts
    array([2, 2])
    """
    bounds = _levels(levels)
    return Histogram(np.array(_native.histogram(image, bounds), np.int64), np.array(bounds, np.int64))


def joint_histogram(
    image: Array, levels: int | Sequence[int] | Array = 256, second_levels: Any = None
) -> JointHistogram:
    """
    Count how often values of two channels come together.

    How two channels go together, such as hue and saturation: a model of an object's colours, or, of two
    registered images, their mutual information.

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

    See Also
    --------
    histogram : One channel.
    join : Make channels of two planes and a third one.

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


def check_histogram(counts: Array) -> None:
    """
    Refuse counts that add up to 0, before anything is divided by their sum.

    A histogram is empty where its levels leave out all pixels: shares of the whole would be NaN then.

    Parameters
    ----------
    counts : array of int64 or another type of whole numbers
        The counts of `histogram` or `joint_histogram`, none below 0.

    Raises
    ------
    StatusError
        All counts are 0 (``Status.DivByZero``), or there are none.
    TypeError
        The counts are no whole numbers.
    ValueError
        A count is below 0.

    See Also
    --------
    histogram : Count pixels between levels.
    joint_histogram : Count pairs of values.

    Examples
    --------
    >>> counts = nuqi.histogram(np.array([[7, 7]], np.uint8), [0, 5]).counts
    >>> try:
    ...     nuqi.check_histogram(counts)
    ... except nuqi.StatusError as error:
    ...     error.status
    <Status.DivByZero: -9943>
    """
    numbers = np.asarray(counts)
    if numbers.dtype.kind not in "iu":
        raise TypeError(f"counts: expected integers, got {numbers.dtype}; pass the counts of nuqi.histogram")
    if numbers.size and numbers.min() < 0:
        raise ValueError("counts: a count is below 0")
    _native.check_histogram(np.minimum(numbers, 2**31 - 1).astype(np.int32).ravel())
