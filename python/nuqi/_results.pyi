from typing import Any, NamedTuple

from nuqi._types import Array

class CannyThresholds(NamedTuple):
    low: float
    high: float

class Region(NamedTuple):
    area: int
    top: int
    left: int
    height: int
    width: int

class Filled(NamedTuple):
    image: Array
    region: Region

class Histogram(NamedTuple):
    counts: Array
    levels: Array

class JointHistogram(NamedTuple):
    counts: Array
    levels: Array
    second_levels: Array

class MeanStd(NamedTuple):
    mean: Any
    std: Any

class MinMax(NamedTuple):
    min: Any
    max: Any
    min_at: Any
    max_at: Any
