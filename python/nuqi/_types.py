"""Types of arguments and results."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

if TYPE_CHECKING:
    from numpy.typing import NDArray

    Array = NDArray[Any]
else:  # numpy.typing takes longer to import than all of this package
    Array = np.ndarray

__all__ = ["Array"]
