"""What nuqi.c refuses, what it keeps, and that neither garbage nor threads bring it down."""

import pickle
import re
import sys
import threading

import numpy as np
import nuqi
import nuqi.c
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from prototypes import HEADER, PROTOTYPES
from test_c_agreement import Both
from threads import refusal_of_two


def image(height: int = 4, width: int = 5, dtype: type = np.uint8, channels: int = 0) -> np.ndarray:
    shape = (height, width, channels) if channels else (height, width)
    return np.arange(np.prod(shape)).reshape(shape).astype(dtype)


class TestArrays:
    @pytest.mark.parametrize(
        "roi",
        [np.s_[:, :], np.s_[1:4, 2:5], np.s_[::2, 1:3], np.s_[2:3, :], np.s_[:, 3:4], np.s_[2:1:-1, :]],
    )
    def test_rows_any_distance_apart(self, roi: object) -> None:
        source = image(6, 7)[roi]
        sums = np.zeros((9, 20), np.float32)[2 : 2 + source.shape[0], 3 : 3 + source.shape[1]]
        nuqi.c.nuqiAdd_8u32f_C1IR(source, sums)
        assert (sums == source).all()

    def test_one_row_or_column_has_any_stride(self) -> None:
        as_strided = np.lib.stride_tricks.as_strided
        for shape, strides in [((1, 5), (-7, 1)), ((1, 5), (0, 1)), ((4, 1), (5, -3)), ((0, 5), (-1, 9))]:
            source = as_strided(image(), shape, strides, writeable=False)
            sums = np.zeros(shape, np.float32)
            nuqi.c.nuqiAdd_8u32f_C1IR(source, sums)
            assert (sums == source).all()

    @pytest.mark.parametrize(
        ("source", "says"),
        [
            (image()[:, ::2], r"np\.ascontiguousarray\(src\)"),
            (image()[::-1], r"np\.ascontiguousarray\(src\)"),
            (image(channels=3)[..., 1], r"channel=.*nuqi\.split"),
            (np.broadcast_to(image()[:1], (4, 5)), r"np\.ascontiguousarray"),
            (image(dtype=np.uint16), r"src\.astype\(np\.uint8\)"),
            (image(dtype=np.float64), r"got float64"),
            (image().astype(bool), r"expected uint8, got bool"),
            (image(channels=3), r"expected shape \(height, width\).*nuqi\.split"),
            (image().ravel(), r"got \(20,\)"),
            ([[1, 2]], r"got list"),
            (None, r"got NoneType"),
        ],
    )
    def test_says_what_to_pass_instead(self, source: object, says: str) -> None:
        with pytest.raises(TypeError, match=says):
            nuqi.c.nuqiAdd_8u32f_C1IR(source, np.zeros((4, 5), np.float32))

    def test_written_arrays(self) -> None:
        sums = np.zeros((4, 5), np.float32)
        sums.flags.writeable = False
        with pytest.raises(TypeError, match=r"read-only.*acc\.copy\(\)"):
            nuqi.c.nuqiAdd_8u32f_C1IR(image(), sums)
        with pytest.raises(TypeError, match=r"dtype=np\.float32"):
            nuqi.c.nuqiAdd_8u32f_C1IR(image(), np.zeros((4, 5), ">f4"))
        with pytest.raises(TypeError, match=r"np\.empty"):
            nuqi.c.nuqiAdd_8u32f_C1IR(image(), np.zeros((4, 10), np.float32)[:, ::2])

    def test_masks_are_bool_or_uint8(self) -> None:
        mask = image() > 9
        assert nuqi.c.nuqiMean_8u_C1MR(image(), mask) == image()[mask].mean()
        assert nuqi.c.nuqiMean_8u_C1MR(image(), mask.view(np.uint8)) == image()[mask].mean()

    def test_sizes_agree(self) -> None:
        with pytest.raises(nuqi.StatusError, match=r"acc is 4 x 6 .* should be 4 x 5") as caught:
            nuqi.c.nuqiAdd_8u32f_C1IR(image(), np.zeros((4, 6), np.float32))
        assert caught.value.status == nuqi.Status.BadSize

    def test_overlap(self) -> None:
        whole = image(8, 8)
        nuqi.c.nuqiAbsDiff_8u_C1R(whole, whole[::1], whole)
        assert not whole.any()
        left, right, below = whole[:4, :4], whole[:4, 4:], whole[1:5, :4]
        nuqi.c.nuqiAbsDiff_8u_C1R(left, left, right)
        for target in (below, whole[:4, 1:5], whole[::2, :4]):
            with pytest.raises(nuqi.StatusError, match="overlaps") as caught:
                nuqi.c.nuqiAbsDiff_8u_C1R(left, left, target)
            assert caught.value.status == nuqi.Status.BadArg

    def test_one_image_is_not_always_two(self) -> None:
        floats = image(dtype=np.float32)
        with pytest.raises(nuqi.StatusError, match="acc overlaps src"):
            nuqi.c.nuqiAdd_32f_C1IR(floats, floats)

    def test_canny_needs_one_stride(self) -> None:
        dx = np.zeros((4, 5), np.int16)
        with pytest.raises(ValueError, match="one row stride"):
            nuqi.c.nuqiCanny_16s8u_C1R(dx, np.zeros((4, 9), np.int16)[:, :5], np.zeros((4, 5), np.uint8), 1, 2)


class TestPlanes:
    def test_one_alone(self) -> None:
        plane = np.zeros((4, 5), np.uint8)
        nuqi.c.nuqiCopy_8u_C3P3R(image(channels=3), [None, plane, None])
        assert (plane == image(channels=3)[..., 1]).all()

    @pytest.mark.parametrize(
        ("planes", "error", "says"),
        [
            (lambda memory: [memory[0], memory[1]], TypeError, "expected 3 planes, got 2"),
            (lambda memory: [memory[0], memory[1], memory[2, :3]], ValueError, "one size and one row stride"),
            (lambda memory: [*memory[:2, :4, :5], np.zeros((4, 5), np.uint8)], ValueError, "one size and one row stride"),
            (lambda memory: list(memory[:, :3]), nuqi.StatusError, "differ from the image in size"),
            (lambda memory: list(memory[:, :, :5][:, :, 1:]), nuqi.StatusError, "differ from the image in size"),
            (lambda memory: [memory[0, :4, :5], memory[0, :4, 4:9], memory[1, :4, :5]], nuqi.StatusError, "written overlap"),
        ],
    )
    def test_refusals(self, planes: object, error: type[Exception], says: str) -> None:
        memory = np.full((3, 6, 9), 77, np.uint8)
        with pytest.raises(error, match=says):
            nuqi.c.nuqiCopy_8u_C3P3R(image(channels=3), planes(memory))  # type: ignore[operator]
        assert (memory == 77).all()

    def test_none_overlaps_the_image(self) -> None:
        memory = np.zeros(100, np.uint8)
        planes = [memory[start : start + 20].reshape(4, 5) for start in (0, 20, 40)]
        with pytest.raises(nuqi.StatusError, match="a plane overlaps the image"):
            nuqi.c.nuqiCopy_8u_P3C3R(planes, memory[40:].reshape(4, 5, 3))


def test_lists_have_room() -> None:
    line = np.full(5, 77, np.uint8)
    with pytest.raises(ValueError, match="dst: expected 5 entries or more, got 4"):
        nuqi.c.nuqiSampleLine_8u_C1R(image(), line[:4], (0, 0), (4, 3))
    assert nuqi.c.nuqiSampleLine_8u_C1R(image(), line, (0, 0), (4, 3)) == 5
    for bins, levels in [(3, 5), (5, 5), (0, 1)]:
        with pytest.raises(ValueError, match="hist: expected"):
            nuqi.c.nuqiCalcHist_8u_C1R(image(), np.zeros(bins, np.int32), np.arange(levels, dtype=np.uint8))
    with pytest.raises(ValueError, match="levels: expected 7 entries"):
        nuqi.c.nuqiCalcHist_8u_C2R(image(channels=2), np.zeros((2, 3), np.int32), np.zeros(6, np.int32))
    with pytest.raises(ValueError, match="x: expected 4 entries, got 5"):
        nuqi.c.nuqibFastArctan_32f(np.zeros(4, np.float32), np.zeros(5, np.float32), np.zeros(4, np.float32))


class TestBuffers:
    def test_the_size_is_tested(self) -> None:
        dx, edges = np.zeros((4, 5), np.int16), np.zeros((4, 5), np.uint8)
        size = nuqi.c.nuqiCannyGetSize((5, 4))
        nuqi.c.nuqiCanny_16s8u_C1R(dx, dx, edges, 1, 2, np.empty(size, np.uint8))
        with pytest.raises(ValueError, match=f"expected {size} bytes or more, got {size - 1}"):
            nuqi.c.nuqiCanny_16s8u_C1R(dx, dx, edges, 1, 2, np.empty(size - 1, np.uint8))

    def test_none_overlaps_an_image(self) -> None:
        memory = np.zeros(1000, np.uint8)
        picture = memory[:20].reshape(4, 5)
        with pytest.raises(nuqi.StatusError, match="buffer overlaps image"):
            nuqi.c.nuqiFloodFill_4Con_8u_C1IR(picture, (0, 0), 1, memory)


class TestStates:
    def test_stripes_equal_the_whole(self) -> None:
        source, whole = image(13, 6), np.zeros((13, 6), np.int16)
        state = nuqi.c.nuqiBlurInitAlloc(6, 1, 5)
        assert nuqi.c.nuqiBlur_8u16s_C1R(source, whole, state, 0) == 13
        parts, row = np.zeros((13, 6), np.int16), 0
        for part, rows in [(1, np.s_[:4]), (4, np.s_[4:9]), (2, np.s_[9:])]:
            row += nuqi.c.nuqiBlur_8u16s_C1R(source[rows], parts[row:], state, part)
        assert row == 13 and (parts == whole).all()

    def test_low_strips_of_morphology(self) -> None:
        source, whole = image(7, 6), np.zeros((7, 6), np.uint8)
        state = nuqi.c.nuqiMorphologyInitAlloc(6, 1, 1, (3, 5), (1, 1), 0, None)
        nuqi.c.nuqiDilateStrip_Rect_8u_C1R(source, whole, state, 0)
        parts, row = np.zeros((7, 6), np.uint8), 0
        for y in range(7):
            row += nuqi.c.nuqiDilateStrip_Rect_8u_C1R(source[y : y + 1], parts[row:], state, 1 if y == 0 else 4)
        assert row == 4
        row += nuqi.c.nuqiDilateStrip_Rect_8u_C1R(source[:0], parts[row:], state, 2)
        assert row == 7 and (parts == whole).all()

    def test_targets_have_room(self) -> None:
        state = nuqi.c.nuqiBlurInitAlloc(6, 1, 5)
        nuqi.c.nuqiBlur_8u16s_C1R(image(4, 6), np.zeros((2, 6), np.int16), state, 1)
        with pytest.raises(nuqi.StatusError, match="dst is 5 x 6 .* should be 6 x 6"):
            nuqi.c.nuqiBlur_8u16s_C1R(image(4, 6), np.zeros((5, 6), np.int16), state, 2)
        state = nuqi.c.nuqiMorphologyInitAlloc(6, 1, 1, (3, 5), (1, 1), 0, None)
        nuqi.c.nuqiErodeStrip_Rect_8u_C1R(image(2, 6), np.zeros((0, 6), np.uint8), state, 1)
        with pytest.raises(nuqi.StatusError, match="should be 3 x 6"):
            nuqi.c.nuqiErodeStrip_Rect_8u_C1R(image(1, 6), np.zeros((2, 6), np.uint8), state, 2)

    def test_freed_or_wrong(self) -> None:
        state = nuqi.c.nuqiBlurInitAlloc(5, 1, 3)
        target = np.zeros((4, 5), np.uint8)
        with pytest.raises(TypeError, match="expected a nuqi.c.MorphState"):
            nuqi.c.nuqiErodeStrip_8u_C1R(image(), target, state, 0)
        nuqi.c.nuqiConvolFree(state)
        with pytest.raises(ValueError, match="freed"):
            nuqi.c.nuqiBlur_8u16s_C1R(image(), np.zeros((4, 5), np.int16), state, 0)
        with pytest.raises(ValueError, match="freed"):
            nuqi.c.nuqiConvolFree(state)

    def test_two_threads_cannot_use_one(self) -> None:
        source = np.zeros((3000, 3000), np.float32)
        state = nuqi.c.nuqiLaplaceInitAlloc(3000, 9, 7)
        call = nuqi.c.nuqiLaplace_32f_C1R
        assert "another thread" in refusal_of_two(lambda: call(source, np.zeros_like(source), state, 0))


class TestErrors:
    def test_statuses_are_those_of_the_header(self) -> None:
        listed = dict(re.findall(r"^  Status(\w+) = (-?\d+)", HEADER, re.MULTILINE))
        assert {status.name: status.value for status in nuqi.Status} == {k: int(v) for k, v in listed.items()}

    def test_status_error(self) -> None:
        with pytest.raises(nuqi.StatusError) as caught:
            nuqi.c.nuqiUpdateMotionHistory_8u32f_C1IR(image(), np.zeros((4, 5), np.float32), 1.0, -1.0)
        error = caught.value
        assert isinstance(error, ValueError)
        assert (error.status, error.function) == (nuqi.Status.BadArg, "nuqiUpdateMotionHistory_8u32f_C1IR")
        again = pickle.loads(pickle.dumps(error))
        assert (type(again), again.status, again.function, str(again)) == (
            nuqi.StatusError, error.status, error.function, str(error))  # fmt: skip

    @pytest.mark.parametrize(
        ("arguments", "error"),
        [((), TypeError), ((1, 2), TypeError), ((1, 9, "3"), TypeError), ((1, 9, 2**40), OverflowError), ((1, 9, 2**70), OverflowError),
         ((1, 9, 2.0), TypeError), ((0, 9, 3), nuqi.StatusError), ((1, 3, 3), nuqi.StatusError)],
    )  # fmt: skip
    def test_scalars(self, arguments: tuple[object, ...], error: type[Exception]) -> None:
        with pytest.raises(error):
            nuqi.c.nuqiBlurInitAlloc(*arguments)

    def test_floats(self) -> None:
        for value in (np.inf, np.float32(3), 3, np.nan):
            nuqi.c.nuqiAbsDiffC_32f_C1R(image(dtype=np.float32), np.zeros((4, 5), np.float32), value)
        with pytest.raises(OverflowError):
            nuqi.c.nuqiAbsDiffC_32f_C1R(image(dtype=np.float32), np.zeros((4, 5), np.float32), 1e300)


def arrays() -> st.SearchStrategy[object]:
    """Arrays of many types, shapes and strides, of one memory each."""
    dtypes = st.sampled_from(["u1", "i1", "i2", "i4", "f4", ">f4", "f8", "?", "O"])
    shapes = st.lists(st.integers(0, 6), min_size=0, max_size=3)
    slices = st.sampled_from([np.s_[...], np.s_[::2], np.s_[::-1], np.s_[..., ::2], np.s_[..., 1:], np.s_[1:]])
    return st.builds(
        lambda dtype, shape, part: np.zeros(shape, dtype)[part] if shape else np.zeros(shape, dtype),
        dtypes, shapes, slices,
    )  # fmt: skip


SMALL = st.one_of(
    arrays(), st.integers(-3, 9), st.floats(width=32), st.none(), st.text(max_size=2), st.just(2**70),
    st.tuples(st.integers(-2, 6), st.integers(-2, 6)), st.lists(arrays(), max_size=4),
    st.builds(lambda w, n: nuqi.c.nuqiBlurInitAlloc(w, 1, n), st.integers(1, 6), st.sampled_from([3, 5, 7])),
    st.builds(lambda w, n: nuqi.c.nuqiMorphologyInitAlloc(w, 1, 1, (n, n), (0, 0), 0, None),
              st.integers(1, 6), st.integers(1, 4)),
)  # fmt: skip


@settings(max_examples=500, deadline=None)
@given(st.sampled_from(sorted(PROTOTYPES)), st.integers(0, 9), SMALL, st.integers(0, 9), SMALL)
def test_garbage_is_refused_or_works(name: str, i: int, one: object, j: int, other: object) -> None:
    arguments = Both(name).python
    arguments[i % len(arguments)] = one
    arguments[j % len(arguments)] = other
    try:
        getattr(nuqi.c, name)(*arguments)
    except (TypeError, ValueError, OverflowError):
        pass


@settings(max_examples=200, deadline=None)
@given(
    st.sampled_from(["nuqiBlur_8u16s_C1R", "nuqiErodeStrip_Rect_8u_C1R"]),
    st.integers(1, 5),
    st.lists(st.tuples(st.sampled_from([0, 1, 2, 4, 3]), st.integers(0, 6), st.integers(0, 9)), max_size=8),
)
def test_strips_in_any_order_stay_inside(name: str, n: int, strips: list[tuple[int, int, int]]) -> None:
    blur = "Blur" in name
    state = (
        nuqi.c.nuqiBlurInitAlloc(5, 1, n | 1 if n > 2 else 3)
        if blur
        else nuqi.c.nuqiMorphologyInitAlloc(5, 1, 1, (n, n), (n // 2, n // 3), 0, None)
    )
    for part, rows, room in strips:
        memory = np.full((room + 8, 9), 77, np.int16 if blur else np.uint8)
        target = memory[4 : 4 + room, 2:7]
        try:
            written = getattr(nuqi.c, name)(np.ones((rows, 5), np.uint8), target, state, part)
        except nuqi.StatusError:
            written = 0
        target[:written] = 77
        assert (memory == 77).all()


def releases_the_lock(run: "object") -> bool:
    """Whether another thread, woken just before, runs before the call returns."""
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1000.0)
    try:
        for _ in range(20):
            gate, ran = threading.Lock(), []
            gate.acquire()
            thread = threading.Thread(target=lambda: (gate.acquire(), ran.append(True)))
            thread.start()
            gate.release()
            run()  # type: ignore[operator]
            if ran:
                return True
            thread.join()
        return False
    finally:
        sys.setswitchinterval(interval)


def test_the_lock_is_released() -> None:
    floats = np.ones((3000, 3000), np.float32)
    target = np.zeros_like(floats)
    line = np.zeros(9_000_000, np.float32)
    state = nuqi.c.nuqiLaplaceInitAlloc(3000, 9, 7)
    assert releases_the_lock(lambda: nuqi.c.nuqiSobel3x3_Dx_32f_C1R(floats, target))
    assert releases_the_lock(lambda: nuqi.c.nuqiLaplace_32f_C1R(floats, target, state, 0))
    assert releases_the_lock(lambda: nuqi.c.nuqibFastArctan_32f(floats.ravel(), floats.ravel(), line))
    assert not releases_the_lock(lambda: sum(range(300_000)))


def test_eight_threads_share_sources() -> None:
    rng = np.random.default_rng(1)
    source = rng.integers(0, 256, (200, 300), np.uint8)
    expected = np.zeros((200, 300), np.int16)
    nuqi.c.nuqiSobel3x3_Dx_8u16s_C1R(source, expected)
    right: list[bool] = []

    def work() -> None:
        target = np.zeros_like(expected)
        for _ in range(50):
            target[:] = 0
            nuqi.c.nuqiSobel3x3_Dx_8u16s_C1R(source, target)
            right.append(bool((target == expected).all()))

    threads = [threading.Thread(target=work) for _ in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(right) == 400 and all(right)
