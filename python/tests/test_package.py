"""The package as a whole: documentation, names, import."""

import csv
import doctest
import inspect
import pydoc
import subprocess
import sys

import numpy as np
import nuqi
import pytest
from numpydoc.validate import validate
from prototypes import HEADER, ROOT

FUNCTIONS = [name for name in nuqi.__all__ if inspect.isfunction(getattr(nuqi, name))]
STRIPS = [nuqi.BoxSum, nuqi.Sobel, nuqi.Laplace, nuqi.Morphology]
METHODS = [name for name in dir(nuqi.BoxSum) if not name.startswith("_")]

# Operations of the table that are no functions of nuqi.
ELSEWHERE = {
    "morphology": "the class Morphology, which is a state",
    "end_state": "nobody calls it: objects end their states, and the package keeps those of its functions",
}


def test_the_table_of_names_is_covered() -> None:
    with open(ROOT / "docs/operations.tsv", encoding="utf-8") as file:
        rows = [row["operation"] for row in csv.DictReader(file, delimiter="\t")]
    assert sorted(FUNCTIONS) == sorted(set(rows) - set(ELSEWHERE))
    assert set(ELSEWHERE) < set(rows) and inspect.isclass(nuqi.Morphology)
    for strips in STRIPS:
        assert strips.__name__ in nuqi.__all__


def check_documentation(name: str, of: object) -> None:
    assert not validate(f"nuqi.{name}")["errors"], name
    examples = doctest.DocTestParser().get_doctest(inspect.getdoc(of) or "", {"np": np, "nuqi": nuqi}, name, None, None)
    assert examples.examples, name
    assert doctest.DocTestRunner(verbose=False).run(examples).failed == 0


@pytest.mark.parametrize("name", nuqi.__all__)
def test_documentation(name: str) -> None:
    check_documentation(name, getattr(nuqi, name))


@pytest.mark.parametrize("name", METHODS)
def test_documentation_of_methods(name: str) -> None:
    check_documentation(f"BoxSum.{name}", getattr(nuqi.BoxSum, name))


def test_documentation_of_c() -> None:
    for name in nuqi.c.__all__:
        check_documentation(f"c.{name}", getattr(nuqi.c, name))
    assert str(inspect.signature(nuqi.c.nuqiCannyGetSize)) == "(roi)"


def test_help_says_what_nuqi_h_says() -> None:
    text = pydoc.render_doc(nuqi.c.nuqiCanny_16s8u_C1R, renderer=pydoc.plaintext)
    for line in (
        "nuqiCanny_16s8u_C1R(dx, dy, dst, low, high, buffer=None)",
        "dy : (h, w) array of int16",
        "StatusUnsupported: low below 0, or not (high >= low)",
        "J. Canny, ",
    ):
        assert line in text
    assert "_header" not in {name.rpartition(".")[2] for name in _modules("import nuqi")}  # read on demand


def test_version() -> None:
    numbers = [line.split()[2] for line in HEADER.splitlines() if line.startswith("#define NUQI_VERSION_")]
    assert nuqi.__version__ == ".".join(numbers)


def _modules(statement: str) -> set[str]:
    """What a fresh interpreter has imported after a statement, beyond NumPy."""
    script = (
        f"import sys, numpy; before = set(sys.modules); {statement};"
        "print(*(name for name in set(sys.modules) - before))"
    )
    run = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=True)
    return set(run.stdout.split())


def test_import_pulls_in_nothing_but_numpy() -> None:
    assert not {name for name in _modules("import nuqi") if not name.startswith("nuqi")}
