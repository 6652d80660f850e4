"""The operations of nuqi: equal to nuqi.c where the contract does not bite, to exact integers elsewhere."""

import threading

import numpy as np
import nuqi
import pytest

RNG = np.random.default_rng(7)
BYTES = RNG.integers(0, 256, (24, 34), np.uint8)
OTHER = RNG.integers(0, 256, (24, 34), np.uint8)
FLOATS = RNG.normal(0, 50, (24, 34)).astype(np.float32)
COLOURS = RNG.integers(0, 256, (24, 34, 3), np.uint8)
MASK = BYTES > 100
C = nuqi.c


def c_result(function: str, *arguments: object, shape: tuple[int, ...] = (24, 34), dtype: type = np.int16) -> np.ndarray:
    """What a function of nuqi.c writes that takes the target after the source."""
    out = np.zeros(shape, dtype)
    source, *others = arguments
    getattr(C, function)(source, out, *others)
    return out


def state_result(maker: tuple[object, ...], function: str, source: np.ndarray, dtype: type = np.int16) -> np.ndarray:
    state = getattr(C, maker[0])(source.shape[1], *maker[1:])  # type: ignore[call-overload]
    out = np.zeros(source.shape, dtype)
    getattr(C, function)(source, out, state, 0)
    return out


def element(size: tuple[int, int], anchor: tuple[int, int], shape: int, mask: object = None, channels: int = 1) -> tuple:
    return ("nuqiMorphologyInitAlloc", 1, channels, size, anchor, shape, mask)


L_SHAPE = np.array([[1, 0], [1, 0], [1, 1]], bool)
CROSS = np.array([[0, 1, 0], [1, 1, 1], [0, 1, 0]], bool)

# What an operation gives, and what the C function of the same work gives.
PAIRS = {
    "accumulate": lambda: (nuqi.accumulate(BYTES, FLOATS.copy()), FLOATS + BYTES),
    "accumulate_mask": lambda: (nuqi.accumulate(BYTES, FLOATS.copy(), mask=MASK), FLOATS + np.where(MASK, BYTES, 0)),
    "accumulate_square": lambda: (
        nuqi.accumulate_square(BYTES, FLOATS.copy()), FLOATS + BYTES.astype(np.float32) ** 2),
    "accumulate_product": lambda: (
        nuqi.accumulate_product(BYTES, OTHER, FLOATS.copy()), FLOATS + BYTES.astype(np.float32) * OTHER),
    "accumulate_weighted": lambda: (
        nuqi.accumulate_weighted(BYTES, FLOATS.copy(), alpha=0.5), FLOATS + np.float32(0.5) * (BYTES - FLOATS)),
    "abs_diff": lambda: (nuqi.abs_diff(BYTES, OTHER), abs(BYTES.astype(int) - OTHER).astype(np.uint8)),
    "abs_diff_number": lambda: (nuqi.abs_diff(BYTES, 300), (255 - BYTES)),
    "split": lambda: (np.array(nuqi.split(COLOURS)), np.moveaxis(COLOURS, 2, 0)),
    "join": lambda: (nuqi.join(nuqi.split(COLOURS)), COLOURS),
    "sobel3x3": lambda: (nuqi.sobel3x3(BYTES, derivative="dxdy"), c_result("nuqiSobel3x3_DxDy_8u16s_C1R", BYTES, 0)),
    "scharr": lambda: (nuqi.scharr(BYTES, derivative="dy", shift=2), c_result("nuqiScharr_Dy_8u16s_C1R", BYTES, 0, 2)),
    "box_sum": lambda: (
        nuqi.box_sum(BYTES, size=5), state_result(("nuqiBlurInitAlloc", 1, 5), "nuqiBlur_8u16s_C1R", BYTES)),
    "box_sum_floats": lambda: (
        nuqi.box_sum(FLOATS), state_result(("nuqiBlurInitAlloc", 9, 3), "nuqiBlur_32f_C1R", FLOATS, np.float32)),
    "sobel": lambda: (
        nuqi.sobel(BYTES, x_order=1, y_order=2, aperture=5),
        state_result(("nuqiSobelInitAlloc", 1, 5, 0, 1, 2), "nuqiSobel_8u16s_C1R", BYTES)),
    "laplace": lambda: (
        nuqi.laplace(BYTES, size=7), state_result(("nuqiLaplaceInitAlloc", 1, 7), "nuqiLaplace_8u16s_C1R", BYTES)),
    "canny_from": lambda: (
        nuqi.canny_from(nuqi.sobel3x3(BYTES), nuqi.sobel3x3(BYTES, derivative="dy"), low=200, high=500),
        _canny_of_c()),
    "min_eigen": lambda: (
        nuqi.min_eigen(BYTES, block=5), c_result("nuqiMinEigenVal_8u32f_C1R", BYTES, 3, 5, dtype=np.float32)),
    "eigen_vectors": lambda: (
        nuqi.eigen_vectors(BYTES, aperture=5, block=7),
        c_result("nuqiEigenValsVecs_8u32f_C1R", BYTES, 5, 7, shape=(24, 34, 6), dtype=np.float32)),
    "distance": lambda: (
        nuqi.distance_transform(MASK, metric="city_block"),
        c_result("nuqiDistanceTransform_3x3_8u32f_C1R", MASK.view(np.uint8), np.array([1, 2], np.float32),
                 dtype=np.float32)),
    "distance_weights": lambda: (
        nuqi.distance_transform(MASK, metric=(1.0, 1.5, 2.25)),
        c_result("nuqiDistanceTransform_5x5_8u32f_C1R", MASK.view(np.uint8), np.array([1, 1.5, 2.25], np.float32),
                 dtype=np.float32)),
    "erode": lambda: (
        nuqi.erode(BYTES, (3, 5)), state_result(element((5, 3), (2, 1), 0), "nuqiErodeStrip_Rect_8u_C1R", BYTES, np.uint8)),
    "erode_cross": lambda: (
        nuqi.erode(BYTES, CROSS),
        state_result(element((3, 3), (1, 1), 1), "nuqiErodeStrip_Cross_8u_C1R", BYTES, np.uint8)),
    "dilate_anchor": lambda: (
        nuqi.dilate(BYTES, L_SHAPE, anchor=(2, 0)),
        state_result(element((2, 3), (0, 2), 100, L_SHAPE.astype(np.int32).ravel()), "nuqiDilateStrip_8u_C1R", BYTES,
                     np.uint8)),
    "dilate_colours": lambda: (
        nuqi.dilate(COLOURS, 3),
        state_result(element((3, 3), (1, 1), 0, None, 3), "nuqiDilateStrip_Rect_8u_C3R", COLOURS, np.uint8)),
    "pyramid_down": lambda: (
        nuqi.pyramid_down(COLOURS), c_result("nuqiPyrDown_Gauss5x5_8u_C3R", COLOURS, shape=(12, 17, 3), dtype=np.uint8)),
    "pyramid_up": lambda: (
        nuqi.pyramid_up(BYTES), c_result("nuqiPyrUp_Gauss5x5_8u_C1R", BYTES, shape=(48, 68), dtype=np.uint8)),
    "arctan": lambda: (
        nuqi.arctan(FLOATS, FLOATS.T.reshape(24, 34).copy()).ravel(),
        _arctan_of_c(FLOATS.ravel(), FLOATS.T.reshape(24, 34).ravel())),
    "sample_line": lambda: (
        nuqi.sample_line(COLOURS, start=(2, 1), end=(20, 30)),
        c_result("nuqiSampleLine_8u_C3R", COLOURS, (1, 2), (30, 20), shape=(30, 3), dtype=np.uint8)),
    "norm_l2": lambda: (nuqi.norm_l2(BYTES), C.nuqiNorm_L2_8u_C1MR(BYTES, np.ones_like(BYTES))),
    "norm_rel_l1": lambda: (
        nuqi.norm_rel_l1(COLOURS, COLOURS[::-1].copy(), mask=MASK, channel=2),
        C.nuqiNormRel_L1_8u_C3CMR(COLOURS, COLOURS[::-1].copy(), MASK, 3)),
    "histogram": lambda: (nuqi.histogram(BYTES, [5, 100, 256]).counts, np.histogram(BYTES, [5, 100, 256])[0]),
    "joint_histogram": lambda: (
        nuqi.joint_histogram(COLOURS[..., :2].copy(), 4, [0, 100, 256]).counts,
        np.histogram2d(COLOURS[..., 1].ravel(), COLOURS[..., 0].ravel(), [[0, 100, 256], [0, 64, 128, 192, 256]])[0]),
}  # fmt: skip


def _canny_of_c() -> np.ndarray:
    out = np.zeros_like(BYTES)
    dx, dy = nuqi.sobel3x3(BYTES), nuqi.sobel3x3(BYTES, derivative="dy")
    C.nuqiCanny_16s8u_C1R(dx, dy, out, 200, 500)
    return out


def _arctan_of_c(y: np.ndarray, x: np.ndarray) -> np.ndarray:
    out = np.zeros_like(y)
    C.nuqibFastArctan_32f(y, x, out)
    return out


@pytest.mark.parametrize("name", PAIRS)
def test_equals_c(name: str) -> None:
    got, expected = PAIRS[name]()
    assert np.array_equal(got, expected)
    if isinstance(got, np.ndarray) and "histogram" not in name:
        assert got.dtype == expected.dtype


@pytest.mark.parametrize("method", ["sq_diff", "sq_diff_normed", "corr", "corr_normed", "coeff", "coeff_normed"])
def test_match_template(method: str) -> None:
    c_name = "".join(word.capitalize() for word in method.split("_"))
    template = BYTES[3:9, 4:12]
    expected = np.zeros((19, 27), np.float32)
    getattr(C, f"nuqiMatchTemplate_{c_name}_8u32f_C1R")(BYTES, template, expected)
    assert np.array_equal(nuqi.match_template(BYTES, template, method=method), expected)


@pytest.mark.parametrize("derivative", ["dx", "dy", "d2x", "d2y", "dxdy"])
def test_derivatives(derivative: str) -> None:
    c_name = {"dx": "Dx", "dy": "Dy", "d2x": "D2x", "d2y": "D2y", "dxdy": "DxDy"}[derivative]
    expected = c_result(f"nuqiSobel3x3_{c_name}_8u16s_C1R", BYTES, *([0] if "dy" in derivative else []))
    assert np.array_equal(nuqi.sobel3x3(BYTES, derivative=derivative), expected)


@pytest.mark.parametrize("channels", [3, 4])
@pytest.mark.parametrize("dtype", [np.uint8, np.float32])
def test_channels(channels: int, dtype: type) -> None:
    image = RNG.integers(0, 256, (5, 7, channels)).astype(dtype)
    planes = nuqi.split(image)
    assert np.array_equal(planes, np.moveaxis(image, 2, 0))
    assert np.array_equal(nuqi.join(planes), image)


@pytest.mark.parametrize("mask", [None, MASK, MASK.view(np.uint8)])
@pytest.mark.parametrize("dtype", [np.uint8, np.int8, np.float32])
def test_accumulation(dtype: type, mask: "np.ndarray | None") -> None:
    a, b = (image.view(np.int8).astype(dtype) for image in (BYTES, OTHER))
    first, second = a.astype(np.float32), b.astype(np.float32)
    taken = np.float32(1) if mask is None else (mask != 0).astype(np.float32)
    sums = FLOATS.copy()
    assert np.array_equal(nuqi.accumulate(a, FLOATS.copy(), mask=mask), sums + first * taken)
    assert np.array_equal(nuqi.accumulate_square(a, FLOATS.copy(), mask=mask), sums + first * first * taken)
    assert np.array_equal(nuqi.accumulate_product(a, b, FLOATS.copy(), mask=mask), sums + first * second * taken)
    weighted = sums + np.float32(0.25) * taken * (first - sums)
    assert np.array_equal(nuqi.accumulate_weighted(a, FLOATS.copy(), alpha=0.25, mask=mask), weighted)


@pytest.mark.parametrize("operator", ["sobel", "scharr"])
def test_canny_breaks_ties_as_the_contract_says(operator: str) -> None:
    derivative = nuqi.sobel3x3 if operator == "sobel" else nuqi.scharr
    dx, dy = derivative(BYTES), derivative(BYTES, derivative="dy")
    y, x = np.indices(BYTES.shape)
    k = (x % 2 + 2 * (y % 2)).astype(np.int16)
    expected = nuqi.canny_from(np.where(dx < 0, 4 * dx - k, 4 * dx + k), 4 * dy, low=4 * 300 + 3, high=4 * 900 + 3)
    assert np.array_equal(nuqi.canny(BYTES, 300, 900, operator=operator), expected)


def test_thresholds_follow_operator_and_share() -> None:
    usual = nuqi.canny_thresholds(BYTES)
    assert nuqi.canny_thresholds(BYTES, share=0.5).high < usual.high
    assert nuqi.canny_thresholds(BYTES, operator="scharr").high > 3 * usual.high
    low, high = nuqi.canny_thresholds(BYTES, operator="scharr")
    assert np.array_equal(nuqi.canny(BYTES, operator="scharr"), nuqi.canny(BYTES, low, high, operator="scharr"))


@pytest.mark.parametrize(
    ("metric", "number"), [("chessboard", 30), ("city_block", 31), ("euclidean_3x3", 32), ("euclidean_5x5", 52)]
)
def test_metrics(metric: str, number: int) -> None:
    weights = C.nuqiGetDistanceTransformMask(number)
    far = np.ones((30, 40), np.uint8)
    far[4, 30] = 0
    assert np.array_equal(nuqi.distance_transform(far, metric=metric), nuqi.distance_transform(far, metric=weights))
    assert len(np.unique([nuqi.distance_transform(far, metric=one)[25, 3] for one in (metric, "city_block")])) == (
        1 if metric == "city_block" else 2
    )


class TestWhereTheContractBites:
    def test_means_of_many_bright_pixels(self) -> None:
        image = np.full((4000, 6000), 200, np.uint8)
        assert nuqi.mean_std(image) == (200.0, 0.0)
        assert nuqi.mean(image, mask=np.ones_like(image)) == 200.0
        assert nuqi.norm_l1(image) == 200 * image.size

    def test_constant_pixels_deviate_by_0(self) -> None:
        assert nuqi.mean_std(np.full((7, 7), 77, np.uint8)) == (77.0, 0.0)

    def test_a_white_square_has_its_outline(self) -> None:
        image = np.zeros((40, 40), np.uint8)
        image[10:30, 10:30] = 255
        edges = nuqi.canny(image)
        assert set(np.unique(edges)) == {0, 255}
        filled, region = nuqi.flood_fill(edges, (20, 20), 255)
        assert 17 * 17 <= region.area <= 20 * 20 and not filled[0].any()

    def test_the_last_bin_ends_at_256(self) -> None:
        assert nuqi.histogram(np.array([[255, 254, 0]], np.uint8)).counts[255] == 1

    def test_nothing_selected(self) -> None:
        for operation in (nuqi.mean, nuqi.mean_std, nuqi.min_max, nuqi.norm_l2):
            with pytest.raises(nuqi.StatusError) as caught:
                operation(BYTES, mask=np.zeros_like(BYTES))
            assert caught.value.function == operation.__name__

    def test_odd_sizes_have_no_half(self) -> None:
        with pytest.raises(nuqi.StatusError, match="even|odd"):
            nuqi.pyramid_down(BYTES[:, :33])


class TestConventions:
    def test_one_result_per_channel(self) -> None:
        planes = nuqi.split(COLOURS)
        found = nuqi.mean_std(COLOURS, mask=MASK)
        assert [tuple(each) for each in zip(*found)] == [nuqi.mean_std(plane, mask=MASK) for plane in planes]
        assert nuqi.mean(COLOURS).tolist() == [nuqi.mean(COLOURS, channel=c) for c in range(3)]
        extrema = nuqi.min_max(COLOURS)
        assert [int(COLOURS[..., c][place]) for c, place in enumerate(extrema.max_at)] == list(extrema.max)
        assert nuqi.norm_diff_l1(COLOURS, COLOURS).tolist() == [0, 0, 0]
        with pytest.raises(nuqi.StatusError):
            nuqi.mean(COLOURS, channel=3)

    def test_places_are_rows_and_columns(self) -> None:
        image = np.zeros((5, 9), np.uint8)
        image[3, 7] = 1
        assert nuqi.min_max(image).max_at == (3, 7)
        painted, region = nuqi.flood_fill(image, (3, 7), 9)
        assert painted[3, 7] == 9 and region == (1, 3, 7, 1, 1)
        image[1:3, 2:7] = 1
        region = nuqi.flood_fill(image, (2, 3), 9).region
        assert (region.area, region.top, region.left, region.height, region.width) == (10, 1, 2, 2, 5)
        assert nuqi.erode(np.ones((9, 9), np.uint8), (9, 1)).shape == (9, 9)

    def test_out_is_what_is_returned(self) -> None:
        out = np.zeros((30, 50), np.int16)[3:27, 8:42]
        assert nuqi.sobel3x3(BYTES, out=out) is out
        assert np.array_equal(out, nuqi.sobel3x3(BYTES))
        image = BYTES.copy()
        assert nuqi.abs_diff(image, OTHER, out=image) is image
        planes = tuple(np.zeros((3, 24, 34), np.uint8))
        assert nuqi.split(COLOURS, out=planes) == planes

    def test_fills_copy_unless_told(self) -> None:
        image = np.array([[1, 1, 2, 3]], np.uint8)
        assert nuqi.flood_fill(image, (0, 0), 9).image.tolist() == [[9, 9, 2, 3]] and image[0, 0] == 1
        assert nuqi.flood_fill(image, (0, 0), 9, lower=0, upper=1).region.area == 4
        assert nuqi.flood_fill(image, (0, 0), 9, 8, in_place=True).image is image and image[0, 0] == 9

    def test_arguments_after_the_images_are_named(self) -> None:
        for call in (lambda: nuqi.mean(BYTES, MASK), lambda: nuqi.box_sum(BYTES, 3), lambda: nuqi.accumulate(BYTES)):
            with pytest.raises(TypeError):
                call()  # type: ignore[no-untyped-call]

    def test_thresholds_from_the_image(self) -> None:
        low, high = nuqi.canny_thresholds(BYTES)
        assert np.array_equal(nuqi.canny(BYTES), nuqi.canny(BYTES, low, high))

    @pytest.mark.parametrize(
        ("call", "error", "says"),
        [
            (lambda: nuqi.mean(COLOURS[..., 1]), TypeError, "channel="),
            (lambda: nuqi.erode([[1, 2]]), TypeError, r"np\.array\(image"),
            (lambda: nuqi.pyramid_down(BYTES[0]), TypeError, "expected shape"),
            (lambda: nuqi.sobel3x3(BYTES.astype(float)), TypeError, r"uint8, int8 or float32, got float64"),
            (lambda: nuqi.sobel3x3(BYTES, derivative="dz"), ValueError, "'dx', 'dy'"),
            (lambda: nuqi.box_sum(BYTES, size=4), nuqi.StatusError, "3, 5 or 7"),
            (lambda: nuqi.box_sum(BYTES, out=np.zeros((24, 33), np.int16)), nuqi.StatusError, "sizes differ"),
            (lambda: nuqi.erode(BYTES, out=BYTES), nuqi.StatusError, "overlap"),
            (lambda: nuqi.erode(BYTES, np.zeros((3, 3), bool)), nuqi.StatusError, "no pixel"),
            (lambda: nuqi.flood_fill(BYTES, (24, 0), 1), nuqi.StatusError, "outside"),
            (lambda: nuqi.flood_fill(BYTES, (0, 0), 1, 5), ValueError, "4 or 8"),
            (lambda: nuqi.match_template(BYTES, np.zeros((25, 5), np.uint8)), nuqi.StatusError, "template"),
            (lambda: nuqi.histogram(BYTES, [3, 2]), nuqi.StatusError, "ascend"),
            (lambda: nuqi.pyramid_up(np.zeros((4, 4, 4), np.uint8)), TypeError, "expected shape"),
            (lambda: nuqi.split(BYTES), TypeError, "expected shape"),
        ],
    )  # fmt: skip
    def test_refusals(self, call: object, error: type[Exception], says: str) -> None:
        with pytest.raises(error, match=says):
            call()  # type: ignore[operator]


def test_eight_threads_with_scratch_and_states_of_their_own() -> None:
    expected = nuqi.canny(BYTES), nuqi.box_sum(BYTES), nuqi.match_template(BYTES, BYTES[:4, :4])
    right: list[bool] = []

    def work() -> None:
        for _ in range(50):
            got = nuqi.canny(BYTES), nuqi.box_sum(BYTES), nuqi.match_template(BYTES, BYTES[:4, :4])
            right.append(all(np.array_equal(a, b) for a, b in zip(got, expected)))

    threads = [threading.Thread(target=work) for _ in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(right) == 400 and all(right)
