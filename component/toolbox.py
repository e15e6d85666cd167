"""Writes the icon that toolboxes show for the component, 16 by 15 pixels, to FILE."""

import struct
import sys

# The bars of a spectrum, blue where they rise above the ambient noise. Toolboxes treat the colour
# of the bottom left pixel as transparent.
PICTURE = """
................
.......BB.......
.......BB.......
....BB.BB.......
....BB.BB.BB....
....BB.BB.BB....
.BB.BB.BB.BB....
.BB.BB.BB.BB.BB.
.BB.BB.BB.BB.BB.
.BB.BB.BB.BB.BB.
.GG.GG.GG.GG.GG.
.GG.GG.GG.GG.GG.
.GG.GG.GG.GG.GG.
KKKKKKKKKKKKKKKK
................
""".split()
COLOURS = {".": (192, 192, 192), "B": (0, 84, 166), "G": (128, 128, 128), "K": (0, 0, 0)}


def bitmap(rows):
    """An uncompressed bitmap, stored from the lowest row up, each pixel as blue, green, red."""
    pixels = b"".join(bytes(COLOURS[letter][::-1]) for row in rows[::-1] for letter in row)
    width, height = len(rows[0]), len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 0, 0, 0, 0)
    return struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54) + header + pixels


for row in PICTURE:
    assert len(row) == 16 and len(PICTURE) == 15, "toolboxes take 16 by 15 pixels"
with open(sys.argv[1], "wb") as file:
    file.write(bitmap(PICTURE))
