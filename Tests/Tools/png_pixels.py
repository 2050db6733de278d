"""Reads the pixels of a PNG, without the tools that wrote it."""

import zlib


def decoded(path):
    """Width, height and rows of RGBA pixels of a picture with eight bits a channel."""
    with open(path, "rb") as file:
        content = file.read()
    position, data = 8, b""
    while position < len(content):
        length = int.from_bytes(content[position:position + 4], "big")
        kind = content[position + 4:position + 8]
        body = content[position + 8:position + 8 + length]
        if kind == b"IHDR":
            width, height = int.from_bytes(body[:4], "big"), int.from_bytes(body[4:8], "big")
            channels = {2: 3, 6: 4}[body[9]]
        elif kind == b"IDAT":
            data += body
        position += 12 + length
    data = zlib.decompress(data)
    stride = width * channels
    previous, rows = bytearray(stride), []
    for y in range(height):
        mode = data[y * (stride + 1)]
        row = bytearray(data[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for index in range(stride):
            left = row[index - channels] if index >= channels else 0
            above = previous[index]
            corner = previous[index - channels] if index >= channels else 0
            if mode == 1:
                row[index] = (row[index] + left) & 255
            elif mode == 2:
                row[index] = (row[index] + above) & 255
            elif mode == 3:
                row[index] = (row[index] + (left + above) // 2) & 255
            elif mode == 4:
                guess = left + above - corner
                nearest = min((abs(guess - left), 0, left), (abs(guess - above), 1, above),
                              (abs(guess - corner), 2, corner))[2]
                row[index] = (row[index] + nearest) & 255
        previous = row
        rows.append([tuple(row[x:x + channels]) + ((255,) if channels == 3 else ())
                     for x in range(0, stride, channels)])
    return width, height, rows
