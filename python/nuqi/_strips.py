"""Filters for images that are larger than memory, or that come in bit by bit: strips in, strips out."""

from __future__ import annotations

from collections.abc import Iterable, Iterator

import numpy as np

from nuqi import _native
from nuqi._filters import result_type
from nuqi._morphology import Footprint, footprint_of
from nuqi._types import Any, Array, dtype_of, shape_of


class Strips:
    """What `BoxSum`, `Sobel`, `Laplace` and `Morphology` share."""

    def __init__(self, native: Any) -> None:
        self._native = native
        self._row_shape: tuple[int, ...] = (0,)
        self._dtype: Any = np.int16

    def _result_type(self, strip: Array) -> Any:
        return result_type(strip)

    def begin(self) -> None:
        """
        Give up the image that has been begun, and begin another.

        A new object has begun an image, and so has one after `finish`: this is for images that end early, such as
        after an error.

        See Also
        --------
        finish : End an image whose last strip has been fed.

        Examples
        --------
        >>> sums = nuqi.BoxSum()
        >>> sums.feed(np.ones((4, 2), np.uint8)).shape
        (3, 2)
        >>> sums.begin()
        >>> sums.feed(np.ones((4, 2), np.uint8)).shape
        (3, 2)
        """
        _native.strips_begin(self._native)

    def feed(self, strip: Array, *, out: Array | None = None) -> Array:
        """
        Take the next strip of an image, and give the rows of the result that are due.

        Strips come from top to bottom, of any height from 1 on and all of one width and type. A row of the result
        is due once all rows that it sees have come, so the first strips give fewer rows, or none.

        Parameters
        ----------
        strip : (n, w) array, for morphology (n, w, 3) or (n, w, 4) as well
            The strip, of a type that the operation for whole images takes.
        out : (m, w) array of the result's type, optional
            Where the rows go, from the first one on. n rows always suffice; it must not overlap the strip.

        Returns
        -------
        (r, w) array of the result's type
            The rows that are due, 0 to n of them: all of a new array, or the first ones of `out`.

        Raises
        ------
        StatusError
            The strip is empty, has another width or type than the one before, `out` has too few rows or another
            width, or overlaps the strip.
        TypeError
            An array has another type or shape, its rows are not contiguous, or it is written and read-only.
        RuntimeError
            Another thread uses this object.

        See Also
        --------
        finish : Give the rows that are left once the last strip has come.
        stream : Do both for all strips of an image.

        Examples
        --------
        >>> sums = nuqi.BoxSum()
        >>> image = np.ones((5, 2), np.uint8)
        >>> sums.feed(image[:1]).shape, sums.feed(image[1:3]).shape, sums.feed(image[3:]).shape
        ((0, 2), (2, 2), (2, 2))
        """
        shape = shape_of(strip)
        due = _native.strips_rows(self._native, shape[0] if shape else 0)
        if out is None:
            out = np.empty((due, *shape[1:]), self._result_type(strip))
        _native.strips_feed(self._native, strip, out)
        self._row_shape, self._dtype = shape[1:], out.dtype
        return out if len(out) == due else out[:due]

    def finish(self, *, out: Array | None = None) -> Array:
        """
        End an image, and give the rows of the result that are left.

        Together with what `feed` has given they are as many rows as the image has, and the same to the last bit as
        the operation gives for the whole image. The object begins the next image.

        Parameters
        ----------
        out : (m, w) array of the result's type, optional
            Where the rows go, from the first one on.

        Returns
        -------
        (r, w) array of the result's type
            The rows that are left: all of a new array, or the first ones of `out`.

        Raises
        ------
        StatusError
            No strip has come, or `out` has too few rows or another width.
        TypeError
            An array has another type or shape, its rows are not contiguous, or it is written and read-only.
        RuntimeError
            Another thread uses this object.

        See Also
        --------
        feed : Take the strips before.
        begin : Give up an image without its end.

        Examples
        --------
        >>> sums = nuqi.BoxSum()
        >>> sums.feed(np.ones((4, 2), np.uint8)).shape, sums.finish().shape
        ((3, 2), (1, 2))
        """
        due = _native.strips_rows(self._native, None)
        if out is None:
            out = np.empty((due, *self._row_shape), self._dtype)
        _native.strips_finish(self._native, out)
        return out if len(out) == due else out[:due]

    def stream(self, strips: Iterable[Array]) -> Iterator[Array]:
        """
        Take all strips of an image, and give its result strip by strip.

        Nothing is held but the strip at work and the few rows that the next one needs, whatever the image's height.
        An image that has been begun before is given up.

        Parameters
        ----------
        strips : iterable of arrays
            The strips from top to bottom, as for `feed`.

        Yields
        ------
        (r, w) array of the result's type
            The next rows of the result, at least one, in an array of their own.

        See Also
        --------
        feed : Take one strip, where the loop is the caller's.

        Examples
        --------
        >>> image = np.ones((100, 2), np.uint8)
        >>> rows = nuqi.BoxSum().stream(image[top : top + 40] for top in range(0, 100, 40))
        >>> [strip.shape for strip in rows]
        [(39, 2), (40, 2), (20, 2), (1, 2)]
        """
        self.begin()
        for strip in strips:
            rows = self.feed(strip)
            if len(rows):
                yield rows
        rows = self.finish()
        if len(rows):
            yield rows


class BoxSum(Strips):
    """
    Sum up the pixels in a square window around each, strip by strip.

    For images larger than memory, or that a camera gives line by line: `feed` takes strips and gives what `box_sum`
    would give for the whole image. One object serves any number of images, of any width, one after the other.

    Parameters
    ----------
    size : {3, 5, 7}
        The window's side.

    Raises
    ------
    StatusError
        The size is another.

    See Also
    --------
    box_sum : The same for a whole image in memory.
    Sobel : Derivatives, strip by strip.

    Examples
    --------
    >>> image = np.arange(60, dtype=np.uint8).reshape(12, 5)
    >>> sums = nuqi.BoxSum(5)
    >>> rows = [sums.feed(image[:4]), sums.feed(image[4:]), sums.finish()]
    >>> np.array_equal(np.concatenate(rows), nuqi.box_sum(image, size=5))
    True
    """

    def __init__(self, size: int = 3) -> None:
        super().__init__(_native.strips_of_box_sum(size))


class Sobel(Strips):
    """
    Compute a derivative of any orders by Sobel's operator, strip by strip.

    For images larger than memory, or that a camera gives line by line: `feed` takes strips and gives what `sobel`
    would give for the whole image.

    Parameters
    ----------
    x_order : int
        The order along x, from 0 to aperture - 1.
    y_order : int
        The order along y, from 0 to aperture - 1.
    aperture : {3, 5, 7}
        The side of the window.

    Raises
    ------
    StatusError
        The aperture is another, or an order is out of its range.

    See Also
    --------
    sobel : The same for a whole image in memory.
    Laplace : Both second derivatives together, strip by strip.

    References
    ----------
    I. Sobel and G. Feldman, "A 3x3 isotropic gradient operator for image processing", 1968.

    Examples
    --------
    >>> image = np.arange(60, dtype=np.uint8).reshape(12, 5)
    >>> rows = nuqi.Sobel(0, 1).stream([image[:7], image[7:]])
    >>> np.array_equal(np.concatenate(list(rows)), nuqi.sobel(image, x_order=0, y_order=1))
    True
    """

    def __init__(self, x_order: int = 1, y_order: int = 0, aperture: int = 3) -> None:
        super().__init__(_native.strips_of_sobel(x_order, y_order, aperture))


class Laplace(Strips):
    """
    Compute the sum of the second derivatives along x and y, strip by strip.

    For images larger than memory, or that a camera gives line by line: `feed` takes strips and gives what `laplace`
    would give for the whole image.

    Parameters
    ----------
    size : {3, 5, 7}
        The side of the window.

    Raises
    ------
    StatusError
        The size is another.

    See Also
    --------
    laplace : The same for a whole image in memory.
    Sobel : Single derivatives, strip by strip.

    Examples
    --------
    >>> image = np.arange(60, dtype=np.uint8).reshape(12, 5)
    >>> rows = nuqi.Laplace(5).stream([image[:7], image[7:]])
    >>> np.array_equal(np.concatenate(list(rows)), nuqi.laplace(image, size=5))
    True
    """

    def __init__(self, size: int = 3) -> None:
        super().__init__(_native.strips_of_laplace(size))


class Morphology(Strips):
    """
    Take the least or the greatest of the pixels under a footprint, strip by strip.

    For images larger than memory, or that a camera gives line by line: `feed` takes strips and gives what `erode`
    or `dilate` would give for the whole image. Feed one's rows to the other for an opening or a closing.

    Parameters
    ----------
    operation : {'erode', 'dilate'}
        Whether the least or the greatest is taken.
    footprint : int, (height, width) or array of bool
        The pixels around a pixel that count, as for `erode`.
    anchor : tuple of int, optional
        The footprint's pixel, (row, column), that lies on the result's; the middle where it is left out.

    Raises
    ------
    StatusError
        The footprint is empty, or the anchor lies outside it.

    See Also
    --------
    erode : The least for a whole image in memory.
    dilate : The greatest for a whole image in memory.

    Examples
    --------
    >>> image = np.arange(60, dtype=np.uint8).reshape(12, 5)
    >>> erosion, dilation = nuqi.Morphology("erode", 5), nuqi.Morphology("dilate", 5)
    >>> opened = dilation.stream(erosion.stream([image[:7], image[7:]]))
    >>> np.array_equal(np.concatenate(list(opened)), nuqi.dilate(nuqi.erode(image, 5), 5))
    True
    """

    def __init__(
        self, operation: str, footprint: Footprint = 3, *, anchor: tuple[int, int] | None = None
    ) -> None:
        super().__init__(_native.strips_of_morphology(operation, footprint_of(footprint), anchor))

    def _result_type(self, strip: Array) -> Any:
        return dtype_of(strip)
