"""Images in strips: equal to the operation on the whole image, whatever the strips' heights."""

import io
import re
from typing import Iterator

import numpy as np
import nuqi
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from prototypes import ROOT
from threads import refusal_of_two

RNG = np.random.default_rng(3)
IMAGE = RNG.integers(0, 256, (40, 9), np.uint8)
RING = np.array([[1, 1, 0], [0, 0, 1], [1, 0, 0], [0, 1, 1]], bool)


def images(dtypes: list[type], channels: list[int]) -> st.SearchStrategy[np.ndarray]:
    """Images of 1 to 40 rows, their rows apart."""

    def made(dtype: type, channels: int, height: int, width: int, seed: int) -> np.ndarray:
        shape = (height, width + 3) if channels == 1 else (height, width + 3, channels)
        return np.random.default_rng(seed).integers(-128, 128, shape).astype(dtype)[:, :width]

    return st.builds(
        made, st.sampled_from(dtypes), st.sampled_from(channels), st.integers(1, 40), st.integers(1, 20), st.integers(0, 9)
    )


HEIGHTS = st.lists(st.integers(1, 12), min_size=1, max_size=12)


def cut(image: np.ndarray, heights: list[int]) -> Iterator[np.ndarray]:
    """Strips of these heights, over and over."""
    row, i = 0, 0
    while row < len(image):
        yield image[row : row + heights[i % len(heights)]]
        row += heights[i % len(heights)]
        i += 1


def check(strips: nuqi.BoxSum, image: np.ndarray, heights: list[int], whole: np.ndarray) -> None:
    given_rows = [strips.feed(strip) for strip in cut(image, heights)]
    given_rows.append(strips.finish())
    result = np.concatenate(given_rows)
    assert result.dtype == whole.dtype and np.array_equal(result, whole)
    # The same object once more, into arrays of the caller's.
    room = np.zeros((len(image), image.shape[1] + 2, *image.shape[2:]), whole.dtype)[:, 1:-1]
    row = 0
    for strip in cut(image, heights):
        row += len(strips.feed(strip, out=room[row:]))
    assert row + len(strips.finish(out=room[row:])) == len(image) and np.array_equal(room, whole)


@settings(max_examples=150, deadline=None)
@given(images([np.uint8, np.int8, np.float32], [1]), HEIGHTS, st.sampled_from([3, 5, 7]), st.integers(0, 2), st.integers(0, 2))
def test_sums_equal_the_whole(image: np.ndarray, heights: list[int], size: int, x: int, y: int) -> None:
    check(nuqi.BoxSum(size), image, heights, nuqi.box_sum(image, size=size))
    check(nuqi.Laplace(size), image, heights, nuqi.laplace(image, size=size))
    check(nuqi.Sobel(x, y, size), image, heights, nuqi.sobel(image, x_order=x, y_order=y, aperture=size))


FOOTPRINTS = st.sampled_from([1, 3, (1, 4), (5, 2), (8, 1), RING, np.array([[0, 1, 0], [1, 1, 1], [0, 1, 0]])])


@settings(max_examples=150, deadline=None)
@given(images([np.uint8, np.float32], [1, 3, 4]), HEIGHTS, FOOTPRINTS, st.sampled_from(["erode", "dilate"]), st.booleans())
def test_morphology_equals_the_whole(
    image: np.ndarray, heights: list[int], footprint: object, operation: str, at_the_corner: bool
) -> None:
    anchor = (0, 0) if at_the_corner else None
    whole = getattr(nuqi, operation)(image, footprint, anchor=anchor)
    check(nuqi.Morphology(operation, footprint, anchor=anchor), image, heights, whole)


def test_stream_is_lazy_and_starts_anew() -> None:
    taken = []

    def strips() -> Iterator[np.ndarray]:
        for strip in cut(IMAGE, [10]):
            taken.append(len(strip))
            yield strip

    sums = nuqi.BoxSum(5)
    sums.feed(IMAGE[:7])  # of an image that nobody ends
    rows = sums.stream(strips())
    first = next(rows)
    assert len(first) == 8 and taken == [10]
    assert np.array_equal(np.concatenate([first, *rows]), nuqi.box_sum(IMAGE, size=5))
    # Arrays of their own: what came first has not been written to since.
    assert np.array_equal(first, nuqi.box_sum(IMAGE, size=5)[:8])


def test_the_example_of_the_documents() -> None:
    text = (ROOT / "docs/python.md").read_text(encoding="utf-8")
    picture = RNG.integers(0, 256, (700, 50), np.uint8)
    file = io.BytesIO()
    exec(re.findall(r"```python\n(.*?)```", text, re.DOTALL)[0], {"nuqi": nuqi, "picture": picture, "file": file})
    assert file.getvalue() == nuqi.dilate(nuqi.erode(picture, 9), 9).tobytes()


def test_one_object_serves_all_widths_and_types() -> None:
    sums = nuqi.BoxSum()
    for image in (IMAGE, IMAGE[:, :3].copy(), IMAGE.astype(np.float32), IMAGE[:2], IMAGE.view(np.int8)):
        assert np.array_equal(np.concatenate(list(sums.stream([image]))), nuqi.box_sum(image))


@pytest.mark.parametrize(
    ("call", "error", "says"),
    [
        (lambda s: s.finish(), nuqi.StatusError, "no strip has come"),
        (lambda s: s.feed(IMAGE[:0]), nuqi.StatusError, "empty"),
        (lambda s: (s.feed(IMAGE), s.feed(IMAGE[:, 1:])), nuqi.StatusError, "one width"),
        (lambda s: (s.feed(IMAGE), s.feed(IMAGE.view(np.int8))), nuqi.StatusError, "element type"),
        (lambda s: s.feed(IMAGE, out=np.zeros((5, 9), np.int16)), nuqi.StatusError, "fewer rows"),
        (lambda s: s.feed(IMAGE, out=np.zeros((40, 9), np.uint8)), TypeError, "out: expected int16"),
        (lambda s: (s.feed(IMAGE), s.finish(out=np.zeros((0, 9), np.int16))), nuqi.StatusError, "fewer rows"),
        (lambda s: (s.feed(IMAGE), s.finish(out=np.zeros((1, 9), np.float32))), nuqi.StatusError, "element type"),
        (lambda s: s.feed(IMAGE[:, ::2]), TypeError, r"np\.ascontiguousarray\(strip\)"),
        (lambda s: s.feed([[1, 2]]), TypeError, "strip: expected an array of uint8, int8 or float32, got list"),
        (lambda s: s.feed(IMAGE[0]), TypeError, r"strip: expected shape \(height, width\)"),
        (lambda s: nuqi.BoxSum(4), nuqi.StatusError, "3, 5 or 7"),
        (lambda s: nuqi.Sobel(3, 0), nuqi.StatusError, "not below the aperture"),
        (lambda s: nuqi.Morphology("open"), ValueError, "'erode', 'dilate'"),
        (lambda s: nuqi.Morphology("erode", np.zeros((2, 2))), nuqi.StatusError, "no pixel"),
    ],
)
def test_refusals(call: object, error: type[Exception], says: str) -> None:
    sums = nuqi.BoxSum()
    with pytest.raises(error, match=says):
        call(sums)  # type: ignore[operator]
    assert np.array_equal(np.concatenate(list(sums.stream([IMAGE]))), nuqi.box_sum(IMAGE))


def test_a_refused_call_changes_nothing() -> None:
    sums = nuqi.BoxSum(5)
    rows = [sums.feed(IMAGE[:20])]
    for wrong in (IMAGE[20:, 1:], IMAGE[20:].view(np.int8), IMAGE[20:20], None):
        with pytest.raises((TypeError, ValueError)):
            sums.feed(wrong)
    rows.append(sums.feed(IMAGE[20:]))
    with pytest.raises(nuqi.StatusError, match="fewer rows"):
        sums.finish(out=np.zeros((1, 9), np.int16))
    assert np.array_equal(np.concatenate([*rows, sums.finish()]), nuqi.box_sum(IMAGE, size=5))
    with pytest.raises(nuqi.StatusError, match="no strip has come"):
        sums.finish()


def test_two_threads_cannot_feed_one() -> None:
    big = np.zeros((3000, 3000), np.float32)
    laplace = nuqi.Laplace(7)
    assert "another thread" in refusal_of_two(lambda: laplace.feed(big))


def test_states_are_used_again() -> None:
    # States cannot be released: a thousand objects, one after the other, share one.
    resource = pytest.importorskip("resource")
    wide = np.zeros((8, 100_000), np.uint8)

    def run(times: int) -> int:
        for _ in range(times):
            list(nuqi.BoxSum(7).stream([wide]))
        return int(resource.getrusage(resource.RUSAGE_SELF).ru_maxrss)

    before = run(3)
    assert run(100) - before < 50_000  # a state of this width takes 4 MB
