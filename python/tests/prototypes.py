"""nuqi.h read once more, for the tests, and its functions called by ctypes."""

import ctypes
import dataclasses
import os
import pathlib
import re

import numpy as np

ROOT = pathlib.Path(__file__).resolve().parents[2]
HEADER = (ROOT / "include/nuqi/nuqi.h").read_text(encoding="utf-8")
LIBRARY = ctypes.CDLL(os.environ.get("NUQI_LIBRARY", str(ROOT / "build/release/src/libnuqi.so")))

PIXELS = {
    "uint8_t": np.uint8,
    "int8_t": np.int8,
    "int16_t": np.int16,
    "int32_t": np.int32,
    "float": np.float32,
    "double": np.float64,
}


class Pair(ctypes.Structure):
    """RoiSize and PixelPoint."""

    _fields_ = [("first", ctypes.c_int32), ("second", ctypes.c_int32)]


class Region(ctypes.Structure):
    """FillRegion."""

    _fields_ = [(name, ctypes.c_double) for name in ("area", "value")] + [
        (name, ctypes.c_int32) for name in ("x", "y", "width", "height")
    ]


@dataclasses.dataclass(frozen=True)
class Parameter:
    name: str
    type: str  # "const uint8_t*"
    count: int  # of an array of pointers

    @property
    def base(self) -> str:
        return re.sub(r"const|\*| ", "", self.type)

    @property
    def read(self) -> bool:
        return self.type.startswith("const")


def _parameter(text: str) -> Parameter:
    text = " ".join(text.split())
    match = re.fullmatch(r"(.*?)\s*(\w+)(?:\[(\d)\])?", text)
    assert match
    return Parameter(match[2], match[1], int(match[3] or 0))


PROTOTYPES = {
    name: [_parameter(one) for one in parameters.split(",")]
    for name, parameters in re.findall(r"^NUQI_API StatusCode (\w+)\(([^;]*)\);", HEADER, re.MULTILINE)
}


def call(name: str, arguments: list[object]) -> int:
    """Calls the C function; arrays stand for pointers, pairs for RoiSize and PixelPoint."""
    converted: list[object] = []
    for parameter, argument in zip(PROTOTYPES[name], arguments, strict=True):
        if isinstance(argument, np.ndarray):
            converted.append(ctypes.c_void_p(argument.ctypes.data))
        elif isinstance(argument, tuple):
            converted.append(Pair(*argument))
        elif isinstance(argument, list):  # planes
            pointers = [None if plane is None else plane.ctypes.data for plane in argument]
            converted.append((ctypes.c_void_p * len(pointers))(*pointers))
        elif parameter.type == "float":
            converted.append(ctypes.c_float(argument))
        else:
            converted.append(argument)
    return int(getattr(LIBRARY, name)(*converted))
