"""The gallery's scripts find what the scene holds; where matplotlib is, they draw it."""

import os
import pathlib
import subprocess
import sys

import numpy as np
import nuqi
import pytest

GALLERY = pathlib.Path(__file__).resolve().parents[1] / "gallery"
sys.path.insert(0, str(GALLERY))

import corners  # noqa: E402
import motion  # noqa: E402
import pyramid  # noqa: E402
import segmentation  # noqa: E402
from scene import frame  # noqa: E402


def test_corners() -> None:
    places = corners.strongest(frame(3), 12)
    # Of the door, and of the house where the roof's shadow is not.
    for corner in [(150, 220), (150, 244), (189, 190), (189, 279)]:
        assert min(np.hypot(row - corner[0], column - corner[1]) for row, column in places) < 4
    found = corners.pictures()
    assert nuqi.min_max(found["scores of the door"]).max_at == (145, 215)
    assert found["scores of the door"].max() > 0.98


def test_motion() -> None:
    found = motion.pictures()
    ball = np.s_[120:136, 275:287]  # where it is at last
    assert (found["when it moved"][ball] == 30).all()
    # Forgotten where it was at first, and not in the background.
    assert not found["when it moved"][60:80, 10:30].any()
    assert abs(found["the background"] - frame(-20)).mean() < 2


def test_pyramid() -> None:
    found = pyramid.pictures()
    levels = found["four levels"]
    for left, right in [(0, 320), (320, 480), (480, 560), (560, 600)]:
        height = (right - left) * 3 // 4
        assert levels[:height, left:right].all() and not levels[height:, left:right].any()
    # Edges are lost, flat regions are not.
    lost = found["what the first step loses"]
    assert lost[118:182, 196:214].mean() < 3 < 10 < lost[130:180, 189:191].mean()


def test_segmentation() -> None:
    opened = segmentation.pictures()["opened"]
    labels, regions = segmentation.label(opened)
    assert [int((labels == 40 * i + 40).sum()) for i in range(len(regions))] == [region.area for region in regions]
    ball = next(region for region in regions if (region.top, region.left) == (61, 46))
    assert (ball.height, ball.width) == (39, 39) and abs(ball.area - 20**2 * np.pi) < 20


@pytest.mark.parametrize("name", ["corners", "motion", "pyramid", "segmentation"])
def test_pictures(name: str, tmp_path: pathlib.Path) -> None:
    pytest.importorskip("matplotlib")
    environment = {key: value for key, value in os.environ.items() if key != "DISPLAY"}
    script = [sys.executable, str(GALLERY / f"{name}.py"), str(tmp_path)]
    subprocess.run(script, env=environment, check=True, stdout=subprocess.DEVNULL)
    assert (tmp_path / f"python-{name}.png").read_bytes().startswith(b"\x89PNG")
