"""Every function of nuqi.c gives what the C function of its name gives, bit for bit."""

import ctypes
import re
import zlib

import numpy as np
import nuqi.c
import pytest
from prototypes import HEADER, PIXELS, PROTOTYPES, Pair, Region, call

HEIGHT, WIDTH = 12, 16
# What scalars are given, by the names of parameters; all are legal for all that have them.
SCALARS = {
    "alpha": 0.25, "value": 7, "timestamp": 5.0, "duration": 2.0, "bottomUp": 1, "shift": 1, "coi": 2,
    "channel": 3, "low": 20.0, "high": 90.0, "apertureSize": 3, "blockSize": 5, "seed": (3, 2), "newValue": 9,
    "lowerDelta": 3, "upperDelta": 4, "start": (1, 1), "end": (11, 7), "dataType": 1, "channels": 3,
    "maskType": 52, "roiWidth": WIDTH, "maskSize": 3, "phase": 0, "border": 0, "xOrder": 1, "yOrder": 1,
    "flag": 0, "anchor": (1, 0), "shape": 100, "roi": (WIDTH, HEIGHT), "srcRoi": (WIDTH, HEIGHT),
    "tplRoi": (5, 4), "levelCount": 9,
}  # fmt: skip


def pixels(rng: np.random.Generator, shape: tuple[int, ...], dtype: type) -> np.ndarray:
    """A ROI of an image that is wider than it, so that its rows are apart."""
    whole = (shape[0], shape[1] + 3, *shape[2:]) if len(shape) > 1 else shape
    if dtype is np.float32:
        values = rng.normal(0, 50, whole).astype(np.float32)
    else:
        values = rng.integers(np.iinfo(dtype).min, np.iinfo(dtype).max, whole, dtype, endpoint=True)
    return values[:, : shape[1]] if len(shape) > 1 else values


def shape_of(name: str, parameter: str, masked: bool) -> tuple[int, ...]:
    if parameter == "mask" and masked:
        return HEIGHT, WIDTH
    if parameter == "tpl":
        return 4, 5
    written = parameter == "dst"
    height, width = HEIGHT, WIDTH
    if "PyrDown" in name and written:
        height, width = HEIGHT // 2, WIDTH // 2
    if "PyrUp" in name and written:
        height, width = HEIGHT * 2, WIDTH * 2
    if "MatchTemplate" in name and written:
        height, width = HEIGHT - 3, WIDTH - 4
    if "EigenVals" in name and written:
        return height, width, 6
    channels = re.search(r"_\w*C([234])\w*R$", name)
    return (height, width, int(channels[1])) if channels else (height, width)


def lists_of(name: str, rng: np.random.Generator) -> dict[str, np.ndarray]:
    """Arrays that are no images, by the functions that have some."""
    if "FastArctan" in name:
        return {one: pixels(rng, (37,), np.float32) for one in ("y", "x", "angle")}
    if "SampleLine" in name:
        shape = (11, 3) if "C3" in name else (11,)
        return {"dst": np.zeros(shape, np.uint8 if "8u" in name else np.float32)}
    if name == "nuqiCalcHist_8u_C1R":
        return {"hist": np.ones(8, np.int32), "levels": np.arange(0, 255, 30, dtype=np.uint8)}
    if name == "nuqiCalcHist_8u_C2R":
        levels = np.array([0, 50, 100, 256, 0, 128, 256], np.int32)
        hist = np.zeros((3, 4), np.int32)[:2, :3]  # C clears a row and a column more
        return {"hist": hist, "levels": levels, "counts": np.array([3, 2], np.int32)}
    if "ConvertHist" in name:
        return {"src": np.arange(1, 9, dtype=np.int32), "dst": np.zeros(8, np.float32)}
    if "DistanceTransform_" in name:
        return {"metrics": np.array([1, 1.4, 2.1969][: 2 if "3x3" in name else 3], np.float32)}
    if name == "nuqiMorphologyInitAlloc":
        return {"mask": np.array([0, 1, 0, 1, 1, 1], np.int32)}
    return {}


def make_state(name: str, of_c: bool) -> object:
    """A state that a strip function takes, made by C or by nuqi.c."""
    if "Strip" in name or "Morphology" in name:
        shape = 0 if "_Rect_" in name else 1 if "_Cross_" in name else 100
        channels = int(name[-2]) if name.endswith("R") else 1
        arguments = [WIDTH, 1 if "_8u_" in name else 9, channels, (3, 2), (1, 0), shape]
        maker = "nuqiMorphologyInitAlloc"
        arguments.append(np.array([0, 1, 0, 1, 1, 1], np.int32))
    else:
        kind = re.search(r"nuqi(Blur|Sobel|Laplace|Convol)", name)
        assert kind
        data_type = 9 if "_32f_" in name else 1
        if kind[1] == "Sobel":
            maker, arguments = "nuqiSobelInitAlloc", [WIDTH, data_type, 5, 0, 1, 1]
        else:
            maker, arguments = f"nuqi{kind[1]}InitAlloc".replace("Convol", "Blur"), [WIDTH, data_type, 5]
    if not of_c:
        return getattr(nuqi.c, maker)(*arguments)
    state = ctypes.c_void_p()
    assert call(maker, [*arguments, ctypes.byref(state)]) == 0
    return state


class Both:
    """The arguments of one function for C and for nuqi.c: equal, in memory of their own."""

    def __init__(self, name: str) -> None:
        rng = np.random.default_rng(zlib.crc32(name.encode()))
        self.name, self.c, self.python, self.results = name, [], [], []
        parameters = PROTOTYPES[name]
        lists = lists_of(name, rng)
        masked = name.endswith("MR")
        for parameter, following in zip(parameters, [*parameters[1:], None], strict=True):
            stepped = following is not None and following.name.lower().endswith("step")
            if parameter.name in lists:
                values = lists[parameter.name]
                self.add(values, None if parameter.name == "counts" else values)
            elif parameter.name == "mask" and name == "nuqiMorphologyInitAlloc":
                self.add(lists["mask"], lists["mask"])
            elif parameter.count:
                planes = [pixels(rng, (HEIGHT, WIDTH), PIXELS[parameter.base]) for _ in range(parameter.count)]
                self.c.append([self.twin(plane) for plane in planes])
                self.python.append(planes)
            elif parameter.type.endswith("*") and parameter.base in PIXELS and stepped:
                values = pixels(rng, shape_of(name, parameter.name, masked), PIXELS[parameter.base])
                if parameter.name == "mask" or "Distance" in name:
                    values[values < 100] = 0
                self.add(values, values)
            elif parameter.name.lower().endswith("step"):
                image = self.c[-1]
                self.c.append((image[0] if isinstance(image, list) else image).strides[0])
            elif parameter.name == "length":
                self.c.append(len(self.c[0]))
            elif parameter.base in ("ConvolState", "MorphState"):
                if "InitAlloc" in name:
                    self.result(ctypes.c_void_p())
                else:
                    self.c.append(make_state(name, True))
                    self.python.append(make_state(name, False))
            elif parameter.type == "RoiSize*":
                self.result(Pair(WIDTH, HEIGHT))
            elif parameter.type == "void*":
                self.c.append(np.zeros(1 << 20, np.uint8))
            elif parameter.type.endswith("*"):
                made = {"FillRegion": Region, "PixelPoint": Pair}.get(parameter.base)
                number = {"double": ctypes.c_double, "float": ctypes.c_float, "int32_t": ctypes.c_int32}
                count = 3 if name == "nuqiGetDistanceTransformMask" else 1
                self.result((number[parameter.base] * count)() if count > 1 else (made or number[parameter.base])())
            else:
                self.scalar(parameter)

    @staticmethod
    def twin(values: np.ndarray) -> np.ndarray:
        base = values if values.base is None else values.base
        copy = base.copy()
        return copy if values.base is None else copy[: values.shape[0], : values.shape[1]]

    def add(self, of_c: np.ndarray, of_python: "np.ndarray | None") -> None:
        self.c.append(self.twin(of_c))
        if of_python is not None:
            self.python.append(of_python)

    def result(self, place: object) -> None:
        self.results.append(place)
        self.c.append(ctypes.byref(place))  # type: ignore[arg-type]

    def scalar(self, parameter: object) -> None:
        value = SCALARS[parameter.name]  # type: ignore[attr-defined]
        has_images = any(isinstance(one, np.ndarray | list) for one in self.c)
        if self.name == "nuqiMorphologyInitAlloc" and parameter.name == "maskSize":  # type: ignore[attr-defined]
            value = (3, 2)
        if parameter.type == "RoiSize" and has_images:  # type: ignore[attr-defined]
            image = next(one for one in reversed(self.c) if isinstance(one, np.ndarray | list))
            if "Pyr" in self.name:
                image = self.c[0]
            plane = image[0] if isinstance(image, list) else image
            self.c.append((plane.shape[1], plane.shape[0]))
            return
        self.c.append(value)
        if parameter.name != "levelCount":  # type: ignore[attr-defined]
            self.python.append(value)


def plain(place: object) -> object:
    if isinstance(place, Pair):
        return place.first, place.second
    if isinstance(place, Region):
        return tuple(getattr(place, name) for name, _ in Region._fields_)
    return tuple(place) if isinstance(place, ctypes.Array) else place.value  # type: ignore[attr-defined]


@pytest.mark.parametrize("name", PROTOTYPES)
def test_equals_c(name: str) -> None:
    both = Both(name)
    status = call(name, both.c)
    assert status >= 0, "the test's arguments are legal"
    result = getattr(nuqi.c, name)(*both.python)

    arrays = [one for one in both.c if isinstance(one, np.ndarray | list)]
    mine = [one for one in both.python if isinstance(one, np.ndarray | list)]
    if name == "nuqiCalcHist_8u_C2R":
        del arrays[2]  # the counts
    for expected, got in zip(arrays, mine, strict=False):
        for one, other in zip(expected, got, strict=True):
            assert (one if one.base is None else one.base).tobytes() == (
                other if other.base is None else other.base
            ).tobytes()
    if "Strip" in name or re.match("nuqi(Blur|Sobel|Laplace)_", name):
        assert result == both.results[0].second == HEIGHT
    elif "InitAlloc" in name:
        assert isinstance(result, nuqi.c.ConvolState | nuqi.c.MorphState)
    elif "SampleLine" in name:
        assert result == status == 11
    else:
        expected = [plain(place) for place in both.results]
        expected = [one[: len(result)] if isinstance(one, tuple) else one for one in expected]
        assert result == (None if not expected else expected[0] if len(expected) == 1 else tuple(expected))


def test_table_is_the_header() -> None:
    functions = {name for name in nuqi.c.__all__ if name.startswith("nuqi")}
    assert functions == set(PROTOTYPES)
    assert len(PROTOTYPES) == HEADER.count("NUQI_API StatusCode ") > 250
