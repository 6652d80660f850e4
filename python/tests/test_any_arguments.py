"""Operations with arguments of any kind: an exception that a caller expects, or the right result."""

import copy
from collections.abc import Callable

import numpy as np
import nuqi
from hypothesis import given, settings
from hypothesis import strategies as st
from test_c_contract import arrays

RNG = np.random.default_rng(5)
BYTES, OTHER = RNG.integers(0, 256, (2, 6, 8), np.uint8)
FLOATS, MORE = RNG.normal(0, 50, (2, 6, 8)).astype(np.float32)
COLOURS = RNG.integers(0, 256, (6, 8, 3), np.uint8)
MASK = BYTES > 99
SHORT = np.zeros((6, 8), np.int16)

# Arguments that every operation takes.
CALLS: dict[str, dict[str, object]] = {
    "abs_diff": {"a": BYTES, "b": OTHER, "out": BYTES},
    "accumulate": {"image": BYTES, "accumulator": FLOATS, "mask": MASK},
    "accumulate_product": {"a": FLOATS, "b": MORE, "accumulator": FLOATS + 1, "mask": MASK},
    "accumulate_square": {"image": BYTES, "accumulator": FLOATS, "mask": None},
    "accumulate_weighted": {"image": BYTES, "accumulator": FLOATS, "mask": MASK, "alpha": 0.5},
    "arctan": {"y": FLOATS, "x": MORE, "out": None},
    "box_sum": {"image": BYTES, "size": 5, "out": SHORT},
    "canny": {"image": BYTES, "low": 10, "high": 20, "operator": "scharr", "out": None},
    "canny_from": {"dx": SHORT, "dy": SHORT + 1, "low": 1, "high": 2, "out": np.zeros_like(BYTES)},
    "canny_thresholds": {"image": BYTES, "operator": "sobel", "share": 0.2},
    "check_histogram": {"counts": np.arange(3)},
    "dilate": {"image": COLOURS, "footprint": np.eye(3), "anchor": (1, 1), "out": None},
    "distance_transform": {"image": BYTES, "metric": (1.0, 1.5), "out": None},
    "eigen_vectors": {"image": BYTES, "aperture": 5, "block": 3, "out": None},
    "erode": {"image": FLOATS, "footprint": (2, 3), "anchor": None, "out": np.zeros_like(FLOATS)},
    "flood_fill": {"image": BYTES, "seed": (1, 2), "value": 3, "connectivity": 8, "lower": 1, "upper": None},
    "histogram": {"image": BYTES, "levels": [0, 9, 99]},
    "join": {"planes": [BYTES, BYTES, OTHER], "out": None},
    "joint_histogram": {"image": COLOURS[..., :2].copy(), "levels": 4, "second_levels": [0, 9]},
    "laplace": {"image": FLOATS, "size": 3, "out": None},
    "match_template": {"image": BYTES, "template": OTHER[:2, :3], "method": "corr", "out": np.zeros((5, 6), np.float32)},
    "mean": {"image": COLOURS, "mask": MASK, "channel": 1},
    "mean_std": {"image": BYTES, "mask": None, "channel": None},
    "min_eigen": {"image": FLOATS, "aperture": 3, "block": 7, "out": None},
    "min_max": {"image": COLOURS, "mask": MASK, "channel": None},
    "motion_history": {"silhouette": MASK, "history": FLOATS, "timestamp": 9, "duration": 3},
    "norm_inf": {"image": BYTES, "mask": MASK, "channel": None},
    "norm_rel_l2": {"a": COLOURS, "b": COLOURS + 1, "mask": None, "channel": 2},
    "pyramid_down": {"image": COLOURS, "out": None},
    "pyramid_up": {"image": BYTES, "out": np.zeros((12, 16), np.uint8)},
    "sample_line": {"image": COLOURS, "start": (0, 0), "end": (5, 7), "out": None},
    "scharr": {"image": BYTES, "derivative": "dy", "shift": 2, "out": None},
    "sobel": {"image": BYTES, "x_order": 1, "y_order": 1, "aperture": 7, "out": None},
    "sobel3x3": {"image": FLOATS, "derivative": "dx", "out": None},
    "split": {"image": COLOURS, "out": None},
}
ANYTHING = st.one_of(
    arrays(),
    st.none(),
    st.booleans(),
    st.integers(-3, 300),
    st.just(2**70),
    st.floats(),
    st.text(max_size=2),
    st.tuples(st.integers(-2, 9), st.integers(-2, 9)),
    st.lists(st.one_of(st.integers(-2, 300), arrays()), max_size=5),
    st.sampled_from([BYTES[::-1], BYTES.T, COLOURS[..., 1], np.ma.array(BYTES, mask=MASK), object()]),
)


def parts(found: object) -> list[object]:
    if isinstance(found, tuple):
        return [part for one in found for part in parts(one)]
    return [np.asarray(found).tobytes()]


def packed(value: object) -> object:
    """The same values in arrays of their own, row after row."""
    if isinstance(value, list):
        return [packed(one) for one in value]
    return np.array(value, order="C") if type(value) is np.ndarray else copy.copy(value)


def test_all_operations_are_called() -> None:
    alike = {name for name in nuqi.__all__ if name.startswith("norm_")} - set(CALLS)
    assert set(CALLS) | alike == {name for name in nuqi.__all__ if name.islower()} - {"c"}
    for name, arguments in CALLS.items():
        getattr(nuqi, name)(**copy.deepcopy(arguments))


@settings(max_examples=600, deadline=None)
@given(st.sampled_from(sorted(CALLS)), st.data())
def test_any_argument_is_worked_on_or_refused(name: str, data: st.DataObject) -> None:
    arguments = copy.deepcopy(CALLS[name])
    for argument in data.draw(st.lists(st.sampled_from(sorted(arguments)), min_size=1, max_size=2)):
        arguments[argument] = data.draw(ANYTHING)
    again = {argument: packed(value) for argument, value in arguments.items()}
    try:
        found = getattr(nuqi, name)(**arguments)
    except (TypeError, ValueError, OverflowError):
        return
    assert parts(found) == parts(getattr(nuqi, name)(**again))


STRIPS = [lambda: nuqi.BoxSum(5), lambda: nuqi.Sobel(1, 2), nuqi.Laplace, lambda: nuqi.Morphology("dilate", (4, 2))]
CALLS_OF_STRIPS = st.tuples(
    st.sampled_from(["begin", "feed", "finish"]),
    st.one_of(st.sampled_from([BYTES, BYTES[:1], FLOATS[:2], COLOURS]), ANYTHING),
    st.one_of(st.none(), st.sampled_from([SHORT, SHORT[:1], np.zeros((9, 8), np.uint8)]), ANYTHING),
)


@settings(max_examples=300, deadline=None)
@given(st.sampled_from(STRIPS), st.lists(CALLS_OF_STRIPS, max_size=8))
def test_strips_take_any_calls_in_any_order(made: Callable[[], nuqi.BoxSum], calls: list[tuple]) -> None:
    strips = made()
    for method, strip, out in calls:
        try:
            if method == "begin":
                strips.begin()
            elif method == "feed":
                strips.feed(strip, out=out)
            else:
                strips.finish(out=out)
        except (TypeError, ValueError, OverflowError):
            pass
    # Whatever has been, the next image comes out right.
    assert np.array_equal(np.concatenate(list(strips.stream([BYTES]))), np.concatenate(list(made().stream([BYTES]))))
