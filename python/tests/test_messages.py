"""What beginners get wrong, and what they are told to write instead."""

import re
from collections.abc import Callable

import numpy as np
import nuqi
import pytest

GREY = np.zeros((6, 8), np.uint8)
COLOURS = np.zeros((6, 8, 3), np.uint8)
FLOATS = np.zeros((6, 8), np.float32)
DOUBLES = np.zeros((6, 8))
TRUE = GREY == 0

MISTAKES: dict[str, tuple[Callable[[], object], str]] = {
    "colours": (lambda: nuqi.canny(COLOURS), "got (6, 8, 3); pass one channel at a time: nuqi.split"),
    "colours painted": (lambda: nuqi.flood_fill(COLOURS, (0, 0), 1), "pass one channel at a time"),
    "alpha channel": (lambda: nuqi.mean(np.zeros((6, 8, 4), np.uint8)), "pass image[..., :3].copy()"),
    "channels first": (lambda: nuqi.mean(np.zeros((3, 6, 8), np.uint8)), "pass np.moveaxis(image, 0, -1).copy()"),
    "one channel, three dimensions": (lambda: nuqi.canny(GREY[..., np.newaxis]), "pass image[..., 0]"),
    "a row": (lambda: nuqi.arctan(FLOATS[0], FLOATS[0]), "pass y[np.newaxis]"),
    "doubles": (lambda: nuqi.mean(DOUBLES), "got float64; pass image.astype(np.float32)"),
    "doubles for edges": (lambda: nuqi.canny(DOUBLES), "or (image * 255).astype(np.uint8) if it holds 0 to 1"),
    "shorts": (lambda: nuqi.mean(GREY.astype(np.uint16)), "image.astype(np.uint8) if it holds 0 to 255"),
    "bools": (lambda: nuqi.erode(TRUE), "got bool; pass image.view(np.uint8)"),
    "another byte order": (lambda: nuqi.mean(FLOATS.astype(">f4")), "got >f4; pass image.astype(np.float32)"),
    "a list": (lambda: nuqi.canny([[1, 2]]), "got list; pass np.array(image, np.uint8)"),
    "a file's name": (lambda: nuqi.canny("photo.png"), "expected an array of uint8 or int8, got str"),
    "a masked array": (lambda: nuqi.mean(np.ma.array(GREY, mask=TRUE)), "mask= ~np.ma.getmaskarray(image)"),
    "upside down": (lambda: nuqi.canny(GREY[::-1]), "pass np.ascontiguousarray(image)"),
    "one channel as a slice": (lambda: nuqi.mean(COLOURS[..., 1]), "channel= or a plane of nuqi.split"),
    "a mask of floats": (lambda: nuqi.mean(GREY, mask=DOUBLES), "expected bool or uint8, got float64; pass mask != 0"),
    "a mask of another size": (lambda: nuqi.mean(GREY, mask=TRUE[1:]), "sizes differ (StatusBadSize); got uint8 (6, 8), bool (5, 8)"),
    "out of another type": (lambda: nuqi.box_sum(GREY, out=GREY.copy()), "out: expected int16, got uint8; pass an array made with dtype=np.int16"),
    "out of another size": (lambda: nuqi.box_sum(GREY, out=np.zeros((8, 6), np.int16)), "got uint8 (6, 8), int16 (8, 6)"),
    "out in place": (lambda: nuqi.erode(GREY, out=GREY), "the output overlaps an input"),
    "read-only": (lambda: nuqi.flood_fill(np.broadcast_to(GREY, (6, 8)), (0, 0), 1, in_place=True), "pass image.copy()"),
    "x before y": (lambda: nuqi.flood_fill(GREY, (7, 0), 1), "outside the image (StatusBadArg); places are (row, column)"),
    "a point of floats": (lambda: nuqi.flood_fill(GREY, (1.5, 0), 1), "seed: expected an integer, got float"),
    "an even size": (lambda: nuqi.box_sum(GREY, size=4), "the size is not 3, 5 or 7"),
    "an odd height": (lambda: nuqi.pyramid_down(GREY[1:]), "must be even"),
    "thresholds the other way": (lambda: nuqi.canny(GREY, 200, 100), "high below low (StatusUnsupported); got uint8 (6, 8), 200, 100"),
    "a bright value": (lambda: nuqi.flood_fill(GREY, (0, 0), 256), "value is not 0 to 255"),
    "a footprint of floats": (lambda: nuqi.erode(GREY, 2.5), "footprint: expected a pair of integers, got 2.5"),
    "levels of floats": (lambda: nuqi.histogram(GREY, [0, 0.5, 1]), "levels: expected a number of bins or integers"),
    "template and image": (lambda: nuqi.match_template(GREY[:2], GREY), "the template is wider or higher than the image"),
    "two planes": (lambda: nuqi.join([GREY, GREY]), "planes: expected three or four, got 2"),
    "one weight": (lambda: nuqi.distance_transform(GREY, metric=[1]), "metric: expected two or three weights, got 1"),
    "another word": (lambda: nuqi.canny(GREY, operator="prewitt"), "operator: expected one of 'sobel', 'scharr', got 'prewitt'"),
    "a negative channel": (lambda: nuqi.mean(COLOURS, channel=-1), "there is no such channel: they count from 0"),
    "a channel of a single one": (lambda: nuqi.mean(GREY, channel=0), "leave channel= out"),
    "steps, as in C": (lambda: nuqi.c.nuqiAdd_8u32f_C1IR(GREY, 8, FLOATS, 32, (8, 6)), "(src, acc): got 5 arguments; steps and sizes come from arrays"),
    "two numbers for a size": (lambda: nuqi.c.nuqiCannyGetSize(8, 6), "points and sizes are pairs"),
    "an argument misspelt": (lambda: nuqi.c.nuqiCannyGetSize(ROI=(8, 6)), "no argument 'ROI'; it takes (roi)"),
    "an argument twice": (lambda: nuqi.c.nuqiCannyGetSize((8, 6), roi=(8, 6)), "got 'roi' twice"),
    "an argument forgotten": (lambda: nuqi.c.nuqiAdd_8u32f_C1IR(acc=FLOATS), "lacks its argument 'src'; it takes (src, acc)"),
}  # fmt: skip


@pytest.mark.parametrize("mistake", MISTAKES)
def test_says_what_to_write_instead(mistake: str) -> None:
    call, says = MISTAKES[mistake]
    with pytest.raises((TypeError, ValueError), match=re.escape(says)):
        call()


def test_what_is_proposed_works() -> None:
    nuqi.mean(np.zeros((6, 8, 4), np.uint8)[..., :3].copy())
    nuqi.mean(np.moveaxis(np.zeros((3, 6, 8), np.uint8), 0, -1).copy())
    nuqi.canny(GREY[..., np.newaxis][..., 0])
    nuqi.erode(TRUE.view(np.uint8))
    nuqi.mean(GREY, mask=DOUBLES == 0)
    masked = np.ma.array(np.array([[1, 2, 9]], np.uint8), mask=[[False, False, True]])
    assert nuqi.mean(masked.data, mask=~np.ma.getmaskarray(masked)) == 1.5


def test_c_takes_names_in_any_order() -> None:
    sums = np.zeros((6, 8), np.float32)
    nuqi.c.nuqiAddWeighted_8u32f_C1IR(acc=sums, alpha=0.5, src=GREY + 8)
    assert (sums == 4).all()
    dx, edges = np.zeros((6, 8), np.int16), GREY.copy()
    nuqi.c.nuqiCanny_16s8u_C1R(dx, dx.copy(), high=2, low=1, dst=edges)
    nuqi.c.nuqiCanny_16s8u_C1R(dx, dx.copy(), edges, 1, buffer=np.empty(960, np.uint8), high=2)
    with pytest.raises(ValueError, match="expected 960 bytes"):
        nuqi.c.nuqiCanny_16s8u_C1R(dx, dx.copy(), edges, 1, buffer=np.empty(9, np.uint8), high=2)
