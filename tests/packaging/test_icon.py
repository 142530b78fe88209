"""The pictures of the Mac's icon are those that packaging/icons/draw draws, in name, size and pixels."""

import pathlib
import subprocess

from PIL import Image, ImageChops

ICONS = pathlib.Path(__file__).parents[2] / "packaging/icons"


def test_pictures_are_those_that_are_drawn(tmp_path):
    subprocess.run([ICONS / "draw", tmp_path], check=True)
    kept = ICONS / "com.kestronics.kest-settings.iconset"
    assert {file.name for file in kept.iterdir()} == {file.name for file in tmp_path.iterdir()}
    for file in kept.iterdir():
        picture, drawn = Image.open(file), Image.open(tmp_path / file.name)
        assert (picture.size, picture.mode) == (drawn.size, drawn.mode), file.name
        difference = max(high for _, high in ImageChops.difference(picture, drawn).getextrema())
        assert difference < 40, f"{file.name} does not show the drawing"  # librsvg's versions differ by less
