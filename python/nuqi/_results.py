"""Results of several parts: tuples whose entries have names, and types in _results.pyi."""

from collections import namedtuple


class CannyThresholds(namedtuple("CannyThresholds", "low high")):
    """
    Name the thresholds of `canny`.

    A tuple, so that ``canny(image, *thresholds)`` takes it as it is.

    Parameters
    ----------
    low : float
        Edges go on where the derivative is stronger than this.
    high : float
        Edges start where it is stronger than this.

    See Also
    --------
    canny_thresholds : What returns it.

    Examples
    --------
    >>> ramp = np.arange(64, dtype=np.uint8).reshape(8, 8)
    >>> nuqi.canny_thresholds(ramp).high
    71.0
    """

    __slots__ = ()


class Filled(namedtuple("Filled", "image region")):
    """
    Hold an image after a flood fill, and what was painted.

    Take it apart, ``image, region = nuqi.flood_fill(...)``, or take one entry by its name.

    Parameters
    ----------
    image : (h, w) array
        The painted image: a copy, or with in_place= the image itself.
    region : Region
        What was painted.

    See Also
    --------
    flood_fill : What returns it.

    Examples
    --------
    >>> nuqi.flood_fill(np.zeros((1, 3), np.uint8), (0, 0), 9).image
    array([[9, 9, 9]], dtype=uint8)
    """

    __slots__ = ()


class Region(namedtuple("Region", "area top left height width")):
    """
    Tell what a flood fill has painted.

    How many pixels, and the smallest rectangle around them: its pixels are
    ``image[top : top + height, left : left + width]``. All are 0 where nothing was painted.

    Parameters
    ----------
    area : int
        The number of pixels painted.
    top : int
        The first row.
    left : int
        The first column.
    height : int
        The number of rows.
    width : int
        The number of columns.

    See Also
    --------
    flood_fill : What returns it.

    Examples
    --------
    >>> nuqi.flood_fill(np.eye(3, dtype=np.uint8), (1, 1), 9).region
    Region(area=1, top=1, left=1, height=1, width=1)
    """

    __slots__ = ()


class Histogram(namedtuple("Histogram", "counts levels")):
    """
    Hold numbers of pixels, and the levels between which they lie.

    Bin i counts the pixels from levels[i] to below levels[i + 1].

    Parameters
    ----------
    counts : (n,) array of int64
        The numbers of pixels.
    levels : (n + 1,) array of int64
        The levels.

    See Also
    --------
    histogram : What returns it.

    Examples
    --------
    >>> nuqi.histogram(np.array([[0, 1, 200]], np.uint8), 2)
    Histogram(counts=array([2, 1]), levels=array([  0, 128, 256]))
    """

    __slots__ = ()


class JointHistogram(namedtuple("JointHistogram", "counts levels second_levels")):
    """
    Hold numbers of pixels by both channels, and the levels of each.

    The entry [j, i] counts the pixels whose first channel lies in bin i and whose second lies in bin j.

    Parameters
    ----------
    counts : (m, n) array of int64
        The numbers of pixels.
    levels : (n + 1,) array of int64
        The levels of the first channel.
    second_levels : (m + 1,) array of int64
        The levels of the second channel.

    See Also
    --------
    joint_histogram : What returns it.

    Examples
    --------
    >>> nuqi.joint_histogram(np.array([[[0, 200]]], np.uint8), 2, 4).counts
    array([[0, 0],
           [0, 0],
           [0, 0],
           [1, 0]])
    """

    __slots__ = ()


class MeanStd(namedtuple("MeanStd", "mean std")):
    """
    Hold a mean and a standard deviation.

    Numbers of one channel, or arrays with those of each.

    Parameters
    ----------
    mean : float or (3,) array of float64
        The mean.
    std : float or (3,) array of float64
        The standard deviation of the population.

    See Also
    --------
    mean_std : What returns it.

    Examples
    --------
    >>> nuqi.mean_std(np.array([[1, 3]], np.uint8))
    MeanStd(mean=2.0, std=1.0)
    """

    __slots__ = ()


class MinMax(namedtuple("MinMax", "min max min_at max_at")):
    """
    Hold the least and the greatest pixel, and where they are first met.

    Numbers and places of one channel, or tuples with those of each. A place is an index: ``image[found.max_at]``.

    Parameters
    ----------
    min : int, float or tuple
        The least pixel.
    max : int, float or tuple
        The greatest pixel.
    min_at : (row, column) or tuple of them
        Where the least one is.
    max_at : (row, column) or tuple of them
        Where the greatest one is.

    See Also
    --------
    min_max : What returns it.

    Examples
    --------
    >>> nuqi.min_max(np.array([[5, 2], [9, 2]], np.uint8))
    MinMax(min=2, max=9, min_at=(0, 1), max_at=(1, 0))
    """

    __slots__ = ()
