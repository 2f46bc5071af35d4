"""Pictures that are kept, and what is on the screen now: alike within a tolerance, or not.

VELORIN_PICTURES names a folder into which the pictures are written as they are now, to be looked at and to be
kept (tests/desktop/pictures).
"""
import os
import pathlib

from PIL import Image, ImageChops

_KEPT = pathlib.Path(__file__).parent / "pictures"
# A shade of difference is what another version of a library makes of an edge.
_SHADE = 48
_SHARE_OF_OTHER_PIXELS = 0.01
_MEAN_DIFFERENCE = 2.0
# What is missing in one place only, a dot or a letter, is lost in the mean of the whole.
_BLOCK = 6
_MEAN_DIFFERENCE_OF_A_BLOCK = 30


def assert_like_kept(name: str, picture: Image.Image):
    """Fails unless the picture of this name looks the same."""
    if folder := os.environ.get("VELORIN_PICTURES"):
        pathlib.Path(folder).mkdir(parents=True, exist_ok=True)
        picture.save(f"{folder}/{name}.png", optimize=True)
    kept = Image.open(_KEPT / f"{name}.png").convert("RGB")
    if kept.size != picture.size:
        raise AssertionError(f"{name}: {picture.size[0]}×{picture.size[1]} instead of {kept.size[0]}×{kept.size[1]}")
    difference = ImageChops.difference(kept, picture).convert("L")
    histogram = difference.histogram()
    pixels = sum(histogram)
    mean = sum(value * count for value, count in enumerate(histogram)) / pixels
    other = sum(histogram[_SHADE:]) / pixels
    worst = difference.reduce(_BLOCK).getextrema()[1]
    if mean > _MEAN_DIFFERENCE or other > _SHARE_OF_OTHER_PIXELS or worst > _MEAN_DIFFERENCE_OF_A_BLOCK:
        raise AssertionError(f"{name} looks different: by {mean:.2f} on the mean, by {worst} in one place, "
                             f"{100 * other:.1f}% other pixels; "
                             "VELORIN_PICTURES=FOLDER writes what there is")
