"""The package as a whole: documentation, names, import."""

import csv
import doctest
import inspect
import subprocess
import sys

import numpy as np
import nuqi
import pytest
from numpydoc.validate import validate
from prototypes import HEADER, ROOT

# Neither an extended summary nor a list of related functions is wanted everywhere.
WAIVED = {"ES01", "SA01"}
FUNCTIONS = [name for name in nuqi.__all__ if inspect.isfunction(getattr(nuqi, name))]


def test_the_table_of_names_is_covered() -> None:
    with open(ROOT / "docs/operations.tsv", encoding="utf-8") as file:
        rows = {row["operation"] for row in csv.DictReader(file, delimiter="\t")}
    # States are objects of C++ alone, and counters are divided by NumPy itself.
    assert rows - {"morphology", "end_state", "check_histogram"} == set(FUNCTIONS)


@pytest.mark.parametrize("name", FUNCTIONS)
def test_documentation(name: str) -> None:
    faults = [fault for fault in validate(f"nuqi.{name}")["errors"] if fault[0] not in WAIVED]
    assert not faults
    examples = doctest.DocTestFinder().find(getattr(nuqi, name), name, globs={"np": np, "nuqi": nuqi})
    assert examples and examples[0].examples
    runner = doctest.DocTestRunner(verbose=False, optionflags=doctest.NORMALIZE_WHITESPACE)
    assert runner.run(examples[0]).failed == 0


def test_documentation_of_c() -> None:
    assert doctest.testmod(nuqi.c).failed == 0
    for name in nuqi.c.__all__:
        assert (getattr(nuqi.c, name).__doc__ or "").strip()
    assert str(inspect.signature(nuqi.c.nuqiCannyGetSize)) == "(roi, /)"


def test_version() -> None:
    numbers = [line.split()[2] for line in HEADER.splitlines() if line.startswith("#define NUQI_VERSION_")]
    assert nuqi.__version__ == ".".join(numbers)


def test_import_pulls_in_nothing_but_numpy() -> None:
    script = (
        "import sys, numpy; before = set(sys.modules); import nuqi;"
        "print(*sorted(name for name in set(sys.modules) - before if not name.startswith('nuqi')))"
    )
    run = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=True)
    assert set(run.stdout.split()) <= {"_typing", "typing", "typing.io", "typing.re"}
