"""Writes the stub of nuqi.c from what the built module says of its functions: stubs.py PACKAGE/c.pyi"""

import pathlib
import re
import sys

stub = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(stub.parent.parent))

import nuqi.c  # noqa: E402

ARRAYS = {
    "uint8": "NDArray[np.uint8]",
    "int8": "NDArray[np.int8]",
    "int16": "NDArray[np.int16]",
    "int32": "NDArray[np.int32]",
    "float32": "NDArray[np.float32]",
}
FIELDS = {"area": "float", "value": "float", "x": "int", "y": "int", "width": "int", "height": "int"}


def annotation(text: str) -> str:
    """The type that a line of numpydoc's kind describes."""
    if text.startswith("sequence of"):
        planes = annotation(text.removeprefix("sequence of "))
        return f"Sequence[{planes} | None]" if "written" in text else f"Sequence[{planes}]"
    array = re.search(r"array of (\w+)", text)
    if array:
        return ARRAYS[array[1]] + (" | None" if "or None" in text else "")
    return "tuple[int, int]" if text.startswith("(") else text


lines = [
    "from collections.abc import Sequence",
    "from typing import final",
    "",
    "import numpy as np",
    "from numpy.typing import NDArray",
    "",
    "@final",
    "class ConvolState: ...",
    "@final",
    "class MorphState: ...",
    "",
    "@final",
    "class FillRegion(tuple[float, float, int, int, int, int]):",
    "    n_fields: int",
    "    n_sequence_fields: int",
    "    n_unnamed_fields: int",
    "    __match_args__ = (" + ", ".join(f'"{field}"' for field in FIELDS) + ")",
    *(f"    @property\n    def {field}(self) -> {type_}: ..." for field, type_ in FIELDS.items()),
    "",
]
for name, function in nuqi.c.__dict__.items():
    if not name.startswith("nuqi"):
        continue
    arguments = [
        f"{argument}: {annotation(text)}" + (" = None" if "optional" in text else "")
        for argument, text in function._arguments
    ]
    results = [type_ for _, type_ in function._results]
    result = results[0] if len(results) == 1 else f"tuple[{', '.join(results)}]" if results else "None"
    lines.append(f"def {name}({', '.join(arguments)}) -> {result}: ...")
stub.write_text("\n".join(lines) + "\n", encoding="utf-8")
