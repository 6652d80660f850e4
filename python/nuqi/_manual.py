"""What help() says of the functions of nuqi.c: the contract of nuqi.h, and every argument as it is in Python."""

from __future__ import annotations

import functools
import re
import textwrap
from collections.abc import Mapping
from typing import Any

from nuqi._header import FUNCTIONS, SECTIONS

# What a parameter means, by its name, or by its name in one section.
MEANINGS = {
    "acc": "The accumulator, changed in place.",
    "alpha": "The weight of the image, mostly 0 to 1; not clamped.",
    "anchor": "The element's pixel that lies on the result's, counted from its top-left one.",
    "angle": "Where the angles go, in degrees, 0 to 360. May be `y` or `x`.",
    "apertureSize": "The size of the derivatives' kernels: 3, 5 or 7.",
    "blockSize": "The size of the window: 3, 5 or 7.",
    "border": "Which part of the picture: 0 whole, 1 first strip, 4 one in the middle, 2 last strip.",
    "bottomUp": "1 where images are stored bottom row first, else 0.",
    "buffer": "Scratch memory of at least the size that the query tells; allocated where it is left out.",
    "channel": "The channel that is meant, 1 to 3.",
    "channels": "The number of channels.",
    "coi": "The channel that is meant, 1 to 3.",
    "dataType": "The source's type: 1 for uint8, 2 for int8, 9 for float32.",
    "dst": "Where the result goes.",
    "duration": "How long motion is kept, in the unit of `timestamp`; 0 or more.",
    "dx": "The derivative along x.",
    "dy": "The derivative along y, with the row stride of `dx`.",
    "end": "The last pixel.",
    "flag": "Without effect.",
    "high": "Edges start where the magnitude is above this.",
    "hist": "Where the counts go.",
    "history": "The times of the last motion, changed in place; zeros to start with.",
    "image": "The image, painted in place.",
    "levels": "Ascending levels; bins lie between neighbours.",
    "low": "Edges go on where the magnitude is above this; 0 to `high`.",
    "lowerDelta": "How far a step may lead downwards, 0 or more.",
    "mask": "What is not 0, or is True, selects a pixel.",
    "maskSize": "The size of the window: 3, 5 or 7.",
    "maskType": "30 chessboard, 31 city block, 32 nearly Euclidean in 3x3, 52 in 5x5.",
    "metrics": "The weights of steps to the next pixel, diagonally and, for 5x5, by a knight's move.",
    "newValue": "What the region is painted with.",
    "phase": "Which part of the picture: 0 whole, 1 first stripe, 4 one in the middle, 2 last stripe.",
    "roi": "The region's size in pixels.",
    "roiWidth": "The images' width in pixels.",
    "seed": "A pixel of the region.",
    "shape": "0 rectangle, 1 cross, 2 ellipse, 100 mask.",
    "shift": "The result is divided by 2 to this power.",
    "silhouette": "Not 0 where something moves.",
    "src": "The image.",
    "src1": "One image.",
    "src2": "The other image.",
    "srcRoi": "The source's size in pixels.",
    "start": "The first pixel.",
    "state": "A state that was made for the width, the type and the number of channels.",
    "timestamp": "The time of this silhouette, in any unit.",
    "tpl": "The template, not larger than the source.",
    "tplRoi": "The template's size in pixels.",
    "upperDelta": "How far a step may lead upwards, 0 or more.",
    "value": "The number that is subtracted.",
    "x": "The vectors' x.",
    "xOrder": "The order of the derivative along x, 0 to `apertureSize` - 1.",
    "y": "The vectors' y.",
    "yOrder": "The order of the derivative along y, 0 to `apertureSize` - 1.",
    ("Absolute difference", "dst"): "Where the result goes; may be a source.",
    ("Copies", "src"): "The interleaved image, or its planes, of one row stride.",
    ("Copies", "dst"): "Where it goes: the interleaved image, or its planes, of one row stride. None for planes that "
    "are not wanted, if only one is.",
    ("Histograms", "src"): "The image, or the counters that are tested.",
    ("Histograms", "dst"): "Not written.",
    ("Line samples", "dst"): "Where the pixels go, with room for all of them.",
    ("Morphology states", "mask"): "Not 0 for each pixel of the element, row by row; read for shape 100 alone.",
    ("Morphology states", "maskSize"): "The element's size in pixels.",
    ("Norms", "src2"): "The other image, by whose norm a relative one is divided.",
    ("Template matching", "dst"): "Where the scores go.",
}

# The same for results.
RESULTS = {
    "bufferSize": "The bytes that the buffer needs.",
    "count": "The number of pixels written.",
    "max": "The greatest pixel.",
    "maxAt": "Where it is met first, (x, y).",
    "mean": "The mean.",
    "metrics": "Two weights for 3x3, three for 5x5.",
    "min": "The least pixel.",
    "minAt": "Where it is met first, (x, y).",
    "norm": "The norm.",
    "region": "How many pixels were painted, what with, and the smallest rectangle around them.",
    "roi": "The number of rows written: the first ones of `dst`.",
    "size": "The bytes that the buffer needs.",
    "state": "The state.",
    "stdDev": "The standard deviation of the population.",
}

# What examples pass: by the parameter's name, or its name in one section or function.
VALUES = {
    "alpha": "0.1", "anchor": "(1, 1)", "apertureSize": "3", "blockSize": "3", "border": "0", "bottomUp": "0",
    "channel": "1", "channels": "1", "coi": "1", "dataType": "1", "duration": "5.0", "end": "(7, 5)", "flag": "0",
    "high": "90.0", "low": "30.0", "lowerDelta": "1", "maskSize": "3", "maskType": "52", "newValue": "200",
    "phase": "0", "roi": "(8, 6)", "roiWidth": "8", "seed": "(0, 0)", "shape": "0", "shift": "0", "srcRoi": "(8, 6)",
    "start": "(0, 0)", "timestamp": "9.0", "tplRoi": "(3, 2)", "upperDelta": "1", "value": "7", "xOrder": "1",
    "yOrder": "0",
    ("Distance transforms", "metrics"): "np.array([1, 1.4, 2.1969], np.float32)",
    ("nuqiDistanceTransform_3x3_8u32f_C1R", "metrics"): "np.array([1, 1.4], np.float32)",
    ("Line samples", "dst"): "np.zeros({n}, np.{type})",
    ("Morphology states", "mask"): "None",
    ("Morphology states", "maskSize"): "(3, 3)",
    ("Erosion and dilation", "state"): "nuqi.c.nuqiMorphologyInitAlloc(8, {data}, {channels}, (3, 3), (1, 1), "
    "{shape}, {mask})",
    ("Blur", "state"): "nuqi.c.nuqiBlurInitAlloc(8, {data}, 3)",
    ("Sobel", "state"): "nuqi.c.nuqiSobelInitAlloc(8, {data}, 3, 0, 1, 0)",
    ("Laplace", "state"): "nuqi.c.nuqiLaplaceInitAlloc(8, {data}, 3)",
    ("nuqiConvolFree", "state"): "nuqi.c.nuqiBlurInitAlloc(8, 1, 3)",
    ("nuqiMorphologyFree", "state"): "nuqi.c.nuqiMorphologyInitAlloc(8, 1, 1, (3, 3), (1, 1), 0, None)",
    ("nuqiCalcHist_8u_C1R", "hist"): "np.zeros(3, np.int32)",
    ("nuqiCalcHist_8u_C1R", "levels"): "np.array([0, 50, 100, 255], np.uint8)",
    ("nuqiCalcHist_8u_C2R", "hist"): "np.zeros((2, 3), np.int32)",
    ("nuqiCalcHist_8u_C2R", "levels"): "np.array([0, 50, 100, 256, 0, 128, 256], np.int32)",
}  # fmt: skip
SIZES = {"h": 6, "w": 8, "m": 2, "n": 3}


def look_up(table: Mapping[Any, str], function: str, section: str, name: str) -> str:
    """What a table has for a name, that of the function or the section first."""
    keys = ((function, name), (section, name), name)
    return next((table[key] for key in keys if key in table), "")


def array_of(type_: str) -> str:
    """An expression for an array that the words of an argument describe."""
    match = re.search(r"(\(.*\)) array of (\w+)", type_)
    assert match
    shape = eval(match[1], {"__builtins__": {}}, SIZES)  # "(h // 2, w // 2)", of this package
    return f"np.{'zeros' if 'written' in type_ else 'ones'}({shape}, np.{match[2]})"


def example_of(name: str, section: str, arguments: tuple[tuple[str, str], ...], returns: bool) -> list[str]:
    """A call with legal arguments, small ones of the right shapes."""
    lines: list[str] = []
    passed: list[str] = []
    data = "9" if "_32f_" in name else "1"
    shape = {"Rect": "0", "Cros": "1"}.get(name.partition("Strip_")[2][:4], "100")
    words = {
        "data": data,
        "channels": name[-2],
        "shape": shape,
        "mask": "np.ones(9, np.int32)" if shape == "100" else "None",
        "n": "(8, 3)" if name.endswith("C3R") else "8",
        "type": "float32" if data == "9" else "uint8",
    }
    for argument, type_ in arguments:
        if "optional" in type_:
            continue
        value = look_up(VALUES, name, section, argument).format(**words)
        if not value and type_.startswith("sequence"):
            count = 4 if re.search("P4|C4", name) else 3
            value = f"[{array_of(type_)} for _ in range({count})]"
        value = value or array_of(type_)
        if "array" in type_ or "State" in type_:
            lines.append(f">>> {argument} = {value}")
            passed.append(f"{argument}={argument}" if "=" in "".join(passed) else argument)
        else:
            passed.append(f"{argument}={value}")
    return [*lines, f">>> {'found = ' if returns else ''}nuqi.c.{name}({', '.join(passed)})"]


def underlined(title: str, lines: list[str]) -> list[str]:
    """A section of numpydoc's kind; none without lines."""
    return ["", title, "-" * len(title), *lines] if lines else []


def items(found: list[tuple[str, str]]) -> list[str]:
    """Entries of a section: a head and what it says."""
    return [line for head, text in found for line in (head, *textwrap.wrap(text, 110, **INDENTED))]


INDENTED: dict[str, Any] = {"initial_indent": "    ", "subsequent_indent": "    "}
# What makes the state of a section's functions.
MAKERS = {
    "Blur": "nuqiBlurInitAlloc",
    "Sobel": "nuqiSobelInitAlloc",
    "Laplace": "nuqiLaplaceInitAlloc",
    "Erosion and dilation": "nuqiMorphologyInitAlloc",
}


def related(name: str, section: str, operation: str) -> list[str]:
    """The operation of nuqi that does the same, and what makes or measures what this function needs."""
    objects = {"Filter states": "BoxSum", "Morphology states": "Morphology"}
    if section in objects:
        return [f"nuqi.{objects[section]} : The same with NumPy's conventions; it keeps its state itself."]
    found = [f"nuqi.{operation} : The same with NumPy's conventions."]
    if section in MAKERS:
        found.append(f"{MAKERS[section]} : Make its state.")
    for other, (family, _, its_operation) in FUNCTIONS.items():
        if family == section and other != name and its_operation == operation and re.search("Get(Buf)?Size", other):
            found.append(f"{other} : Tell the size of the buffer.")
    return found


@functools.lru_cache(maxsize=None)
def document(function: Any) -> str:
    """The documentation of a function of nuqi.c."""
    name = function.__name__
    section, line, operation = FUNCTIONS[name]
    parts = dict(SECTIONS[section])
    contract = parts.pop("")
    parts.pop("Example")
    statuses = parts.pop("Statuses", "Those of the list above.")
    method = parts.pop("Method", "")
    arguments, results = function._arguments, function._results
    returned = [
        (type_ if len(results) == 1 else f"{result} : {type_}", RESULTS[result]) for result, type_ in results
    ]
    raised = [
        ("TypeError", "An argument has another type or shape, or an array's rows are not contiguous."),
        ("ValueError", "Sizes or lengths do not agree, or scratch memory is too small."),
        ("StatusError", "In the order of the tests, of which those for pointers and steps cannot fail here:"),
    ]
    notes = [
        line for label, text in parts.items() for line in ["", label, *textwrap.indent(text, "    ").splitlines()]
    ]
    lines = [
        "",
        line,
        "",
        *contract.splitlines(),
        *underlined("Parameters", items([(f"{one} : {type_}", look_up(MEANINGS, name, section, one))
                                         for one, type_ in arguments])),
        *underlined("Returns", items(returned)),
        *underlined("Raises", [*items(raised), "", *textwrap.indent(statuses, "    ").splitlines()]),
        *underlined("See Also", related(name, section, operation)),
        *underlined("Notes", notes[1:]),
        *underlined("References", method.splitlines()),
        *underlined("Examples", example_of(name, section, arguments, bool(results))),
        "",
    ]  # fmt: skip
    return "\n".join(lines)
