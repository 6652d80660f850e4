"""What the package's functions share: types, and how results are allocated."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Callable, Optional

import numpy as np

if TYPE_CHECKING:
    from numpy.typing import NDArray

    Array = NDArray[Any]
else:  # numpy.typing takes longer to import than all of this package
    Array = np.ndarray

__all__ = ["Array", "dtype_of", "of_channels", "per_channel", "shape_of"]


def shape_of(image: Array) -> tuple[int, ...]:
    """The shape of an array. What is none has none: the operation refuses it, and says what it wants."""
    return image.shape if isinstance(image, np.ndarray) else ()


def dtype_of(image: Array) -> Any:
    """The type of an array's elements, that of bytes for what is none."""
    return image.dtype if isinstance(image, np.ndarray) else np.uint8


def per_channel(image: Array, channel: Optional[int], find: Callable[[Optional[int]], Any]) -> Any:
    """One result, or a list with that of each channel where none is named and there are several."""
    shape = shape_of(image)
    if channel is not None or len(shape) != 3:
        return find(channel)
    return [find(each) for each in range(max(shape[2], 1))]  # images without channels are refused


def of_channels(image: Array, channel: Optional[int], find: Callable[[Optional[int]], Any]) -> Any:
    """The same with an array instead of the list."""
    found = per_channel(image, channel, find)
    return np.array(found) if isinstance(found, list) else found
