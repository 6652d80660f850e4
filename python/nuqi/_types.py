"""What the package's functions share: types, and how results are allocated."""

from __future__ import annotations

from collections.abc import Callable

import numpy as np

# What typing has for this; importing that takes longer than all of this package.
TYPE_CHECKING = False
if TYPE_CHECKING:
    from typing import Any

    from numpy.typing import NDArray

    Array = NDArray[Any]
else:
    Any = object
    Array = np.ndarray

__all__ = ["Any", "Array", "dtype_of", "of_channels", "per_channel", "shape_of"]


def shape_of(image: Array) -> tuple[int, ...]:
    """The shape of an array. What is none has none: the operation refuses it, and says what it wants."""
    return image.shape if isinstance(image, np.ndarray) else ()


def dtype_of(image: Array) -> Any:
    """The type of an array's elements, that of bytes for what is none."""
    return image.dtype if isinstance(image, np.ndarray) else np.uint8


def per_channel(image: Array, channel: int | None, find: Callable[[int | None], Any]) -> Any:
    """One result, or a list with that of each channel where none is named and there are several."""
    shape = shape_of(image)
    if channel is None and len(shape) == 3:
        return [find(each) for each in range(max(shape[2], 1))]  # images without channels are refused
    if channel is not None and len(shape) == 2:
        raise TypeError("channel: the image has shape (height, width), a single channel; leave channel= out")
    return find(channel)


def of_channels(image: Array, channel: int | None, find: Callable[[int | None], Any]) -> Any:
    """The same with an array instead of the list."""
    found = per_channel(image, channel, find)
    return np.array(found) if isinstance(found, list) else found
