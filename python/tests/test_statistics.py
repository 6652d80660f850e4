"""Means, norms, extrema and histograms of bytes, against NumPy's whole numbers: every mask, channel and type."""

from __future__ import annotations

import numpy as np
import nuqi
import pytest
from hypothesis import assume, given, settings
from hypothesis import strategies as st

NORMS = {
    "inf": lambda v: abs(v).max(),
    "l1": lambda v: abs(v).sum(),
    "l2": lambda v: np.sqrt((v * v).sum()),
}


@st.composite
def cases(draw: st.DrawFn) -> tuple[np.ndarray, np.ndarray, np.ndarray | None, int | None, np.ndarray]:
    """Two images, a mask or none, a channel or none, and the pixels that they select, as a boolean array."""
    rng = np.random.default_rng(draw(st.integers(0, 10**6)))
    channels = draw(st.sampled_from([1, 3]))
    shape = (draw(st.integers(1, 9)), draw(st.integers(1, 40)), *([channels] if channels == 3 else []))
    dtype = draw(st.sampled_from([np.uint8, np.int8]))
    low, high = np.iinfo(dtype).min, np.iinfo(dtype).max
    a, b = rng.integers(low, high, (2, *shape), dtype, endpoint=True)
    mask = draw(st.sampled_from([None, rng.random(shape[:2]) < 0.5, rng.integers(0, 3, shape[:2], np.uint8)]))
    selected = np.ones(shape[:2], bool) if mask is None else mask != 0
    channel = draw(st.sampled_from([0, 1, 2, None])) if channels == 3 else None
    return a, b, mask, channel, selected


def selections(image: np.ndarray, channel: int | None) -> list[np.ndarray]:
    """The planes that a result is about."""
    planes = [image] if image.ndim == 2 else list(np.moveaxis(image, 2, 0))
    return planes if channel is None else [planes[channel]]


@settings(max_examples=200, deadline=None)
@given(cases())
def test_norms(case: tuple) -> None:
    a, b, mask, channel, selected = case
    assume(selected.any())
    for name, norm in NORMS.items():
        of_a = [norm(plane[selected].astype(np.int64)) for plane in selections(a, channel)]
        of_b = [norm(plane[selected].astype(np.int64)) for plane in selections(b, channel)]
        of_both = [
            norm(one[selected].astype(np.int64) - other[selected])
            for one, other in zip(selections(a, channel), selections(b, channel))
        ]
        assert np.ravel(getattr(nuqi, f"norm_{name}")(a, mask=mask, channel=channel)).tolist() == of_a
        assert np.ravel(getattr(nuqi, f"norm_diff_{name}")(a, b, mask=mask, channel=channel)).tolist() == of_both
        if all(of_b):
            relative = getattr(nuqi, f"norm_rel_{name}")(a, b, mask=mask, channel=channel)
            assert np.ravel(relative) == pytest.approx([d / n for d, n in zip(of_both, of_b)], rel=1e-14)


@settings(max_examples=200, deadline=None)
@given(cases())
def test_means_and_extrema(case: tuple) -> None:
    image, _, mask, channel, selected = case
    if not selected.any():
        with pytest.raises(nuqi.StatusError, match="selects nothing"):
            nuqi.mean(image, mask=mask, channel=channel)
        return
    planes = [plane[selected].astype(np.float64) for plane in selections(image, channel)]
    means = [plane.sum() / plane.size for plane in planes]
    assert np.ravel(nuqi.mean(image, mask=mask, channel=channel)).tolist() == means
    found = nuqi.mean_std(image, mask=mask, channel=channel)
    assert np.ravel(found.mean) == pytest.approx(means)
    assert np.ravel(found.std) == pytest.approx([plane.std() for plane in planes], abs=1e-6)

    extrema = nuqi.min_max(image, mask=mask, channel=channel)
    several = channel is None and image.ndim == 3
    for i, plane in enumerate(selections(image, channel)):
        for value, place, extremum in [(extrema.min, extrema.min_at, min), (extrema.max, extrema.max_at, max)]:
            wanted = extremum(plane[selected].tolist())
            assert (value[i] if several else value) == wanted
            first = np.argwhere((plane == wanted) & selected)[0]
            assert (place[i] if several else place) == tuple(first)


@settings(max_examples=100, deadline=None)
@given(st.integers(0, 10**6), st.lists(st.integers(0, 256), min_size=2, max_size=9, unique=True))
def test_histograms(seed: int, levels: list[int]) -> None:
    image = np.random.default_rng(seed).integers(0, 256, (7, 30, 2), np.uint8)
    first, second = image[..., 0].copy(), image[..., 1].copy()
    levels.sort()
    # NumPy's last bin is closed: one more level keeps what equals the last one out of it.
    bins = [*levels, 257]
    assert nuqi.histogram(first, levels).counts.tolist() == np.histogram(first, bins)[0][:-1].tolist()
    joint = nuqi.joint_histogram(image, levels, 5).counts
    equal = [256 * i // 5 for i in range(6)]
    assert np.array_equal(joint, np.histogram2d(second.ravel(), first.ravel(), [equal, bins])[0][:, :-1])
