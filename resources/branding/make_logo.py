#!/usr/bin/env python3
"""Draws resources/branding/logo.png: a green rounded square holding a white picture frame
with a mountain and a sun, bold enough to read from 16 to 256 pixels; and the desktop icons
icons/<N>x<N>.png in the hicolor sizes, each drawn at its own size from the same shapes.

Pure Python (zlib only). Run it from anywhere: python3 make_logo.py
"""
import math
import os
import struct
import zlib

SIZE = 256  # the drawing's own coordinates
SAMPLES = 4  # supersampling per axis, for smooth edges
ICON_SIZES = (16, 22, 24, 32, 48, 64, 128, 256)

GREEN = (0x2B, 0x5E, 0x45)
PALE = (0xD4, 0xE8, 0xDE)
WHITE = (0xFF, 0xFF, 0xFF)


def in_rounded_rect(x, y, x0, y0, x1, y1, r):
    if x < x0 or x > x1 or y < y0 or y > y1:
        return False
    cx = min(max(x, x0 + r), x1 - r)
    cy = min(max(y, y0 + r), y1 - r)
    return (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def in_triangle(x, y, a, b, c):
    def side(p, q):
        return (x - q[0]) * (p[1] - q[1]) - (p[0] - q[0]) * (y - q[1])
    d1, d2, d3 = side(a, b), side(b, c), side(c, a)
    neg = d1 < 0 or d2 < 0 or d3 < 0
    pos = d1 > 0 or d2 > 0 or d3 > 0
    return not (neg and pos)


def colour_at(x, y):
    """Colour and coverage (alpha) of one sample point."""
    if not in_rounded_rect(x, y, 8, 8, 248, 248, 52):
        return None
    # White frame: outer rounded rectangle minus the opening.
    outer = in_rounded_rect(x, y, 44, 52, 212, 204, 14)
    opening = in_rounded_rect(x, y, 66, 74, 190, 182, 4)
    if outer and not opening:
        return WHITE
    if opening:
        # Inside the picture: two mountains and a sun on green.
        if (x - 158) ** 2 + (y - 106) ** 2 <= 15 ** 2:
            return PALE
        if in_triangle(x, y, (66, 182), (112, 110), (158, 182)):
            return PALE
        if in_triangle(x, y, (118, 182), (152, 134), (190, 182)):
            return WHITE
        return GREEN
    return GREEN


def render(size=SIZE):
    scale = SIZE / size
    samples = SAMPLES if size >= 64 else 8  # small icons: finer sampling, softer edges
    rows = []
    for py in range(size):
        row = bytearray([0])  # PNG filter type 0
        for px in range(size):
            r = g = b = a = 0
            for sy in range(samples):
                for sx in range(samples):
                    c = colour_at((px + (sx + 0.5) / samples) * scale, (py + (sy + 0.5) / samples) * scale)
                    if c is not None:
                        r += c[0]
                        g += c[1]
                        b += c[2]
                        a += 1
            if a:
                row += bytes((r // a, g // a, b // a, a * 255 // (samples * samples)))
            else:
                row += bytes((0, 0, 0, 0))
        rows.append(bytes(row))
    return b"".join(rows)


def png(pixels, size=SIZE):
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)
    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(pixels, 9)) + chunk(b"IEND", b""))


if __name__ == "__main__":
    here = os.path.dirname(os.path.abspath(__file__))
    out = os.path.join(here, "logo.png")
    with open(out, "wb") as f:
        f.write(png(render()))
    print("wrote", out)
    os.makedirs(os.path.join(here, "icons"), exist_ok=True)
    for size in ICON_SIZES:
        out = os.path.join(here, "icons", "%dx%d.png" % (size, size))
        with open(out, "wb") as f:
            f.write(png(render(size), size))
        print("wrote", out)
