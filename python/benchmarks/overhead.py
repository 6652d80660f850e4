"""What Python adds to the C functions at 64x64, how two threads share the work, and what the import takes.

overhead.py BUILD_FOLDER: the package and libnuqi.a in it are measured, C and Python in turn, the least of many rounds.
"""

import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import threading
import time

BUILD = pathlib.Path(sys.argv[1]).resolve()
HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(BUILD / "python"))

import numpy as np  # noqa: E402
import nuqi  # noqa: E402

SIDE, CALLS, ROUNDS, TURNS = 64, 2000, 10, 6
CANNY_CALLS = 150

a, b, out = (np.zeros((SIDE, SIDE), np.uint8) for _ in range(3))
sums = np.zeros((SIDE, SIDE), np.int16)
buffer = np.zeros(6 * SIDE * SIDE, np.uint8)
state = nuqi.c.nuqiBlurInitAlloc(SIDE, 1, 3)

# By the names of c_calls.c: nuqi.c with positional arguments, nuqi.* with out=.
WORK = {
    "abs_diff": (
        "nuqi.c.nuqiAbsDiff_8u_C1R(a, b, out)",
        "nuqi.abs_diff(a, b, out=out)",
    ),
    "norm": (
        "nuqi.c.nuqiNormDiff_L2_8u_C1MR(a, b, b)",
        None,  # an empty mask is an error there
    ),
    "box": (
        "nuqi.c.nuqiBlur_8u16s_C1R(a, sums, state, 0)",
        "nuqi.box_sum(a, out=sums)",
    ),
    "fill": (
        "nuqi.c.nuqiFloodFill_4Con_8u_C1IR(a, (0, 0), 0, buffer)",
        "nuqi.flood_fill(a, (0, 0), 0, in_place=True)",
    ),
}


def least(statement: str | None) -> float:
    """Nanoseconds a call, less those of an empty loop."""
    if statement is None:
        return float("nan")
    scope: dict[str, object] = {}
    exec(f"def run(n):\n    for _ in range(n): {statement}\ndef nothing(n):\n    for _ in range(n): pass", globals(), scope)
    best = {"run": 1e9, "nothing": 1e9}
    for _ in range(ROUNDS):
        for name in best:
            start = time.perf_counter_ns()
            scope[name](CALLS)  # type: ignore[operator]
            best[name] = min(best[name], (time.perf_counter_ns() - start) / CALLS)
    return best["run"] - best["nothing"]


def two_threads() -> float:
    """Calls of Canny on 640x480 a second, as c_calls.c counts them."""
    n = np.arange(640 * 480, dtype=np.int64)

    def canny(dx: np.ndarray, dy: np.ndarray, edges: np.ndarray, scratch: np.ndarray) -> None:
        for _ in range(CANNY_CALLS):
            nuqi.c.nuqiCanny_16s8u_C1R(dx, dy, edges, 100, 300, scratch)

    def picture() -> tuple[np.ndarray, ...]:
        dx = (n * 7919 % 401 - 200).astype(np.int16).reshape(480, 640)
        dy = (n * 104729 % 401 - 200).astype(np.int16).reshape(480, 640)
        return dx, dy, np.empty((480, 640), np.uint8), np.empty(nuqi.c.nuqiCannyGetSize((640, 480)), np.uint8)

    threads = [threading.Thread(target=canny, args=picture()) for _ in range(2)]
    start = time.perf_counter()
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return 2 * CANNY_CALLS / (time.perf_counter() - start)


def import_time() -> tuple[float, float]:
    """Milliseconds and processor time of importing nuqi after NumPy: medians of 20 warm starts."""
    script = (
        f"import sys; sys.path.insert(0, {str(BUILD / 'python')!r}); import numpy; import time;"
        "wall, processor = time.perf_counter(), time.process_time(); import nuqi;"
        "print(time.perf_counter() - wall, time.process_time() - processor)"
    )
    found = []
    for _ in range(21):
        run = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=True,
                             env={**os.environ, "PYTHONDONTWRITEBYTECODE": ""})  # fmt: skip
        found.append([float(number) * 1e3 for number in run.stdout.split()])
    wall, processor = (statistics.median(times) for times in zip(*found[1:]))  # the first writes the bytecode
    return wall, processor


def main() -> None:
    with tempfile.TemporaryDirectory() as folder:
        program = pathlib.Path(folder) / "c_calls"
        include = HERE.parents[1] / "include"
        subprocess.run(["cc", "-O2", f"-I{include}", str(HERE / "c_calls.c"), str(BUILD / "src/libnuqi.a"),
                        "-pthread", "-o", str(program)], check=True)  # fmt: skip
        with subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as c:

            def of_c(work: str) -> float:
                print(work, file=c.stdin, flush=True)
                return float(c.stdout.readline())  # type: ignore[union-attr]

            print("64x64, ns          C    nuqi.c adds    nuqi adds")
            for work, (raw, named) in WORK.items():
                turns = [(of_c(work), least(raw), least(named)) for _ in range(TURNS)]
                base, c_time, nuqi_time = (min(turn[i] for turn in turns) for i in range(3))
                print(f"{work:12} {base:9.0f} {c_time - base:14.0f} {nuqi_time - base:12.0f}")
            # The median of pairs, each measured back to back.
            ratios = [two_threads() / of_c("threads") for _ in range(TURNS)]
            print(f"two threads: {statistics.median(ratios):.2f} of what two C threads reach")
    wall, processor = import_time()
    print(f"import: {wall:.1f} ms after NumPy's, {processor:.1f} ms of processor time")


if __name__ == "__main__":
    main()
