"""
Computer-vision primitives on NumPy arrays, without a copy, exact to the last bit on every machine.

Images are arrays of shape (h, w), or (h, w, channels); places are (row, column) and sizes (height, width).
Every argument after the images is passed by its name, but for those that an operation cannot do without.
``out`` names what is written, and is allocated where it is not given. Arrays are never copied: the pixels of a
row lie back to back, rows may be any positive distance apart, so that a ROI is a slice. Others are refused with
a TypeError that says what to pass instead. Failed operations raise `StatusError`.

`nuqi.c` holds every function of the C library under its own name.
"""

from nuqi import _native, c
from nuqi._arith import abs_diff, accumulate, accumulate_product, accumulate_square, accumulate_weighted, join, split
from nuqi._edges import canny, canny_from, canny_thresholds
from nuqi._features import distance_transform, eigen_vectors, match_template, min_eigen
from nuqi._filters import box_sum, laplace, pyramid_down, pyramid_up, scharr, sobel, sobel3x3
from nuqi._morphology import dilate, erode, flood_fill
from nuqi._motion import arctan, motion_history, sample_line
from nuqi._norms import (
    norm_diff_inf,
    norm_diff_l1,
    norm_diff_l2,
    norm_inf,
    norm_l1,
    norm_l2,
    norm_rel_inf,
    norm_rel_l1,
    norm_rel_l2,
)
from nuqi._results import CannyThresholds, Filled, Histogram, JointHistogram, MeanStd, MinMax, Region
from nuqi._statistics import check_histogram, histogram, joint_histogram, mean, mean_std, min_max
from nuqi._status import Status, StatusError
from nuqi._strips import BoxSum, Laplace, Morphology, Sobel

__all__ = [
    "BoxSum", "CannyThresholds", "Filled", "Histogram", "JointHistogram", "Laplace", "MeanStd", "MinMax",
    "Morphology", "Region", "Sobel", "Status", "StatusError", "abs_diff", "accumulate", "accumulate_product",
    "accumulate_square", "accumulate_weighted", "arctan", "box_sum", "c", "canny", "canny_from", "canny_thresholds",
    "check_histogram", "dilate", "distance_transform", "eigen_vectors", "erode", "flood_fill", "histogram", "join",
    "joint_histogram", "laplace", "match_template", "mean", "mean_std", "min_eigen", "min_max", "motion_history",
    "norm_diff_inf", "norm_diff_l1", "norm_diff_l2", "norm_inf", "norm_l1", "norm_l2", "norm_rel_inf",
    "norm_rel_l1", "norm_rel_l2", "pyramid_down", "pyramid_up", "sample_line", "scharr", "sobel", "sobel3x3",
    "split",
]  # fmt: skip
__version__ = _native.version
