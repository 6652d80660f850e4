"""Runs test_compare.py and writes its table as Markdown: table.py BUILD_FOLDER >docs/python-benchmarks.md"""

import importlib.metadata
import json
import os
import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
PACKAGES = ("numpy", "scipy", "scikit-image", "Pillow")


def measured(build: pathlib.Path) -> list[dict]:
    """Each benchmark's extra_info and its least time."""
    with tempfile.TemporaryDirectory() as folder:
        result = pathlib.Path(folder) / "times.json"
        environment = {**os.environ, "PYTHONPATH": str(build / "python"), "OMP_NUM_THREADS": "1", "OPENBLAS_NUM_THREADS": "1"}
        # Processor time: other work on the machine counts less.
        command = [sys.executable, "-m", "pytest", str(HERE / "test_compare.py"), "--benchmark-timer=time.process_time",
                   f"--benchmark-json={result}", "-q"]  # fmt: skip
        subprocess.run(command, env=environment, check=True, stdout=sys.stderr)
        return json.loads(result.read_text())["benchmarks"]


def processor() -> str:
    lines = pathlib.Path("/proc/cpuinfo").read_text().splitlines()
    return next((line.split(": ")[1] for line in lines if line.startswith("model name")), "unknown processor")


def main() -> None:
    rows: dict[tuple[str, str], dict[str, tuple[float, str]]] = {}
    for one in measured(pathlib.Path(sys.argv[1]).resolve()):
        info = one["extra_info"]
        rows.setdefault((info["operation"], info["library"]), {})[info["size"]] = (one["stats"]["min"], info["differs"])
    versions = ", ".join(f"{name} {importlib.metadata.version(name)}" for name in PACKAGES)
    print("# The same work in Python\n")
    print(f"Milliseconds of processor time, one thread, the least of several rounds; {processor()};\n{versions}.")
    print("`python/benchmarks/table.py` measures all in one run. Ratios are to nuqi.\n")
    print("| operation | by | 640x480 | ratio | 4K | ratio | what differs |\n|---|---|---:|---:|---:|---:|---|")
    for (operation, library), sizes in rows.items():
        cells = []
        for size in ("640x480", "4K"):
            seconds = sizes[size][0]
            ratio = seconds / rows[operation, "nuqi"][size][0]
            cells.append(f"{seconds * 1e3:.3g} | " + ("" if library == "nuqi" else f"{ratio:.1f}"))
        name = f"`{operation}`" if library == "nuqi" else ""
        print(f"| {name} | {library} | {cells[0]} | {cells[1]} | {sizes['4K'][1]} |")


if __name__ == "__main__":
    main()
