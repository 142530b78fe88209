"""A virtual display: pictures of it, the words on it, and a mouse."""

import csv
import io
import os
import subprocess

from PIL import Image, ImageChops, ImageGrab

from harness.processes import Program, wait_until

BACKGROUND = "#dfe5ea"  # light, because the words are read best then


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False).stdout


def wait_for(what, condition):
    """Returns the condition's value; fails after a minute."""
    value = wait_until(condition, 60)
    assert value, f"{what} did not come within a minute"
    return value


def difference(before, after, area=None):
    """Returns the box (left, top, right, bottom) in which two pictures differ by more than 4 %; None when they do not."""
    left, top, right, bottom = area or (0, 0, *before.size)
    changed = ImageChops.difference(before, after).point(lambda value: 255 * (value > 10))
    box = changed.crop((left, top, right, bottom)).getbbox()
    return box and (box[0] + left, box[1] + top, box[2] + left, box[3] + top)


class Screen(Program):
    """The display. `before` is its picture without the words that are searched; `picture` the last that was searched."""

    def __init__(self, size):
        os.makedirs("/tmp/.X11-unix", exist_ok=True)
        super().__init__(["Xvfb", "-displayfd", "1", "-screen", "0", "{}x{}x24".format(*size), "-noreset"])
        os.environ["DISPLAY"] = ":" + wait_for("a display", lambda: self.prints(r"^(\d+)$")).group(1)
        self.before = self.picture = None
        run("xsetroot", "-solid", BACKGROUND)

    def move(self, point):
        run("xdotool", "mousemove", *map(str, point[:2]), "sleep", "0.2")

    def click(self, box, button=1):
        self.move(((box[0] + box[2]) // 2, (box[1] + box[3]) // 2))
        run("xdotool", "click", str(button))

    def shoot(self):
        return ImageGrab.grab(xdisplay=os.environ["DISPLAY"])

    def still(self):
        """Returns a picture once two of them, a second apart, are equal."""
        pictures = [self.shoot()]

        def is_still():
            run("sleep", "1")
            pictures.append(self.shoot())
            return difference(*pictures[-2:]) is None
        wait_for("a still screen", is_still)
        return pictures[-1]

    def find(self, words):
        """Returns the box of these words, which are side by side, in what has changed since `before`; or None."""
        self.picture = self.shoot()
        area = difference(self.before, self.picture)
        # Small letters are read best when enlarged, pale ones on white when all else is dark.
        for mode, scale, dark in (("6", 3, 0), ("11", 3, 70), ("6", 4, 0), ("11", 2, 0)) if area else ():
            grey = self.picture.crop(area).convert("L").point(lambda value, d=2.55 * dark: max(0, value - d) * 255 / (255 - d))
            file = io.BytesIO()
            grey.resize((grey.width * scale, grey.height * scale), Image.BICUBIC).save(file, "PNG")
            table = subprocess.run(["tesseract", "-", "-", "--psm", mode, "tsv"], input=file.getvalue(),
                                   env={**os.environ, "OMP_THREAD_LIMIT": "1"}, capture_output=True, check=False).stdout
            read = [row for row in csv.DictReader(io.StringIO(table.decode()), delimiter="\t", quoting=csv.QUOTE_NONE)
                    if (row["text"] or "").strip()]
            count = len(words.split())
            for rows in (read[first:first + count] for first in range(len(read) - count + 1)):
                if words in " ".join(row["text"] for row in rows):
                    boxes = [[int(row[key]) // scale for key in ("left", "top", "width", "height")] for row in rows]
                    (left, top, *_), (right, bottom, width, height) = boxes[0], boxes[-1]
                    return left + area[0], top + area[1], right + width + area[0], bottom + height + area[1]
        return None

    def wait(self, words):
        return wait_for(f'"{words}" on the screen', lambda: self.find(words))

    def is_red(self, box):
        """Returns whether more than 2 % of a part of the last picture are red."""
        pixels = list(self.picture.crop(box).getdata())
        return sum(red > green + 127 for red, green, *_ in pixels) > 0.02 * len(pixels)

    def keep(self, view, file):
        """Saves a part of the last picture, without its border of the background, for the README."""
        picture = self.picture.crop(view)
        trimmed = picture.crop(ImageChops.difference(picture, Image.new("RGB", picture.size, picture.getpixel((0, 0)))).getbbox())
        trimmed.quantize(64).save(file, optimize=True)
