"""
Hold the C functions of nuqi, under their own names, on NumPy arrays.

An image argument of C, a pointer and a step, is one array here: shape (h, w), or (h, w, channels) where the
name says C3 or C4. Sizes come from the arrays and must agree. Pointers to results are results; several
are a tuple. Scratch memory is the last argument and is allocated where it is not given: pass a one-dimensional array
of uint8, of the size that the query tells, to spare that. States come from the functions that make
them. Everything else stands in its order and means what nuqi.h says: points are (x, y), sizes (width,
height), channels count from 1. Arguments may be passed by their names in C.

Arrays are never copied: the pixels of a row lie back to back, rows may be any positive distance apart. A
failed call raises `nuqi.StatusError`. The interpreter's lock is released during every call.

See Also
--------
nuqi : Operations with NumPy's conventions, which choose the function by the types of arrays.

Examples
--------
>>> import numpy as np
>>> import nuqi.c
>>> image = np.full((4, 5), 200, np.uint8)
>>> sums = np.zeros((4, 5), np.float32)
>>> nuqi.c.nuqiAdd_8u32f_C1IR(image, sums)
>>> float(sums[0, 0])
200.0
>>> nuqi.c.nuqiMean_StdDev_8u_C1R(image)
(200.0, 0.0)
"""

from nuqi import _native

ConvolState = _native.ConvolState
MorphState = _native.MorphState
FillRegion = _native.FillRegion
globals().update(_native.c_functions)

__all__ = ["ConvolState", "FillRegion", "MorphState", *_native.c_functions]
