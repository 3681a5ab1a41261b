#!/usr/bin/env python3
"""Draws data/img/blank_std.bmp: the score panel's picture when there is nothing to engrave.

An A4 page at 100 dpi with ten empty staves in a pale grey, so that it reads as paper waiting
for music rather than as a score. Written as an 8-bit run-length BMP of two colours, which keeps
the file small and is read by every image loader. Run it from anywhere:
    python3 scripts/make-blank-page.py
"""
import os
import struct

WIDTH, HEIGHT = 827, 1169          # A4 at 100 dpi
MARGIN_X, TOP = 72, 128            # about 18 mm at the sides, a title's room at the top
LINE_GAP, STAFF_GAP, STAVES = 8, 100, 10
PAPER, INK = (255, 255, 255), (214, 214, 214)


def staff_rows():
    rows = set()
    for staff in range(STAVES):
        top = TOP + staff * STAFF_GAP
        rows.update(top + line * LINE_GAP for line in range(5))
    return rows


def encode_row(pixels):
    """RLE8: (count, index) runs of at most 255, then the end-of-line mark."""
    out = bytearray()
    i = 0
    while i < len(pixels):
        j = i
        while j < len(pixels) and j - i < 255 and pixels[j] == pixels[i]:
            j += 1
        out += bytes((j - i, pixels[i]))
        i = j
    return out + b"\x00\x00"


def main():
    lines = staff_rows()
    data = bytearray()
    for y in reversed(range(HEIGHT)):  # BMP rows go bottom up
        ink = 1 if y in lines else 0
        data += encode_row([0] * MARGIN_X + [ink] * (WIDTH - 2 * MARGIN_X) + [0] * MARGIN_X)
    data += b"\x00\x01"  # end of bitmap
    palette = b"".join(bytes((b, g, r, 0)) for r, g, b in (PAPER, INK))
    offset = 14 + 40 + len(palette)
    info = struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 8, 1, len(data), 3937, 3937, 2, 2)
    header = struct.pack("<2sIHHI", b"BM", offset + len(data), 0, 0, offset)
    target = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data", "img", "blank_std.bmp")
    with open(target, "wb") as f:
        f.write(header + info + palette + data)
    print(os.path.normpath(target), offset + len(data), "bytes")


if __name__ == "__main__":
    main()
