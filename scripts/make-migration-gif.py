#!/usr/bin/env python3
"""Draws the small looping animation of the migration progress page: blocks of data travel from
the drive on the left to the drive on the right, lit along the program's gradient.

Pure Python, no image library: a GIF89a writer with its own LZW coder. The result is committed;
run this again only to change the picture:

    python3 scripts/make-migration-gif.py src/resources/wizard/migration_small.gif
"""
import struct
import sys

WIDTH, HEIGHT = 72, 36
FRAMES = 16
DELAY_CS = 6  # hundredths of a second per frame

BACKGROUND = (0, 2, 40)
FRAME = (91, 148, 198)
START, END = (0, 225, 255), (160, 3, 218)
GRADIENT_STEPS = 8


def gradient(t):
    return tuple(round(a + (b - a) * t) for a, b in zip(START, END))


PALETTE = [BACKGROUND, FRAME] + [gradient(i / (GRADIENT_STEPS - 1)) for i in range(GRADIENT_STEPS)]
while len(PALETTE) < 16:
    PALETTE.append((0, 0, 0))
TRANSPARENT = 0


def draw_frame(index):
    pixels = [[TRANSPARENT] * WIDTH for _ in range(HEIGHT)]

    def rect(x0, y0, x1, y1, colour, filled=False):
        for y in range(max(0, y0), min(HEIGHT, y1 + 1)):
            for x in range(max(0, x0), min(WIDTH, x1 + 1)):
                if filled or y in (y0, y1) or x in (x0, x1):
                    pixels[y][x] = colour

    # The two drives, each with a fill level: the left one empties as the right one fills.
    share = index / (FRAMES - 1)
    rect(1, 6, 18, 29, 1)
    rect(53, 6, 70, 29, 1)
    left_top = 8 + round(19 * share)
    right_top = 27 - round(19 * share)
    if left_top <= 27:
        rect(3, left_top, 16, 27, 2, filled=True)
    if right_top <= 27:
        rect(55, right_top, 68, 27, 2 + GRADIENT_STEPS - 1, filled=True)

    # Three blocks on the way, each a third of the road apart, coloured by where they are.
    road = 53 - 20 - 6
    for block in range(3):
        position = (index / FRAMES + block / 3) % 1.0
        x = 20 + round(position * road)
        colour = 2 + min(GRADIENT_STEPS - 1, int(position * GRADIENT_STEPS))
        rect(x, 15, x + 5, 20, colour, filled=True)
    return [value for row in pixels for value in row]


def lzw(indices, min_code_size):
    clear, stop = 1 << min_code_size, (1 << min_code_size) + 1
    table = {bytes([i]): i for i in range(clear)}
    next_code, code_size = stop + 1, min_code_size + 1
    out, bit_buffer, bit_count = bytearray(), 0, 0

    def emit(code):
        nonlocal bit_buffer, bit_count
        bit_buffer |= code << bit_count
        bit_count += code_size
        while bit_count >= 8:
            out.append(bit_buffer & 0xFF)
            bit_buffer >>= 8
            bit_count -= 8

    emit(clear)
    word = b""
    for value in indices:
        candidate = word + bytes([value])
        if candidate in table:
            word = candidate
            continue
        emit(table[word])
        if next_code < 4096:
            table[candidate] = next_code
            next_code += 1
            if next_code > (1 << code_size) and code_size < 12:
                code_size += 1
        else:
            emit(clear)
            table = {bytes([i]): i for i in range(clear)}
            next_code, code_size = stop + 1, min_code_size + 1
        word = bytes([value])
    if word:
        emit(table[word])
    emit(stop)
    if bit_count:
        out.append(bit_buffer & 0xFF)
    return bytes(out)


def sub_blocks(data):
    chunks = [data[i:i + 255] for i in range(0, len(data), 255)]
    return b"".join(bytes([len(c)]) + c for c in chunks) + b"\x00"


def write_gif(path):
    colour_bits = 4  # 16 colours
    out = bytearray(b"GIF89a")
    out += struct.pack("<HHBBB", WIDTH, HEIGHT, 0x80 | ((colour_bits - 1) << 4) | (colour_bits - 1), 0, 0)
    for colour in PALETTE:
        out += bytes(colour)
    # Loop for ever.
    out += b"\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00"
    for index in range(FRAMES):
        out += b"\x21\xF9\x04" + struct.pack("<BHB", 0x09, DELAY_CS, TRANSPARENT) + b"\x00"
        out += b"\x2C" + struct.pack("<HHHHB", 0, 0, WIDTH, HEIGHT, 0)
        out += bytes([colour_bits]) + sub_blocks(lzw(draw_frame(index), colour_bits))
    out += b"\x3B"
    with open(path, "wb") as handle:
        handle.write(out)


if __name__ == "__main__":
    write_gif(sys.argv[1] if len(sys.argv) > 1 else "migration_small.gif")
