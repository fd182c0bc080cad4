#!/usr/bin/env python3
"""Makes the sounds and pictures that test movies use; they stand beside the movies. photo.jpg is the one exception:
convert -size 40x40 gradient:'#F2A93B'-'#4974BA' -quality 92 bitmaps/photo.jpg"""
import math
import os
import struct
import wave
import zlib

FOLDER = os.path.dirname(os.path.abspath(__file__))


def path(name):
    return os.path.join(FOLDER, name)


def save_wave(name, channels, width, rate, frames):
    with wave.open(path(name), "wb") as out:
        out.setnchannels(channels)
        out.setsampwidth(width)
        out.setframerate(rate)
        out.writeframes(b"".join(frames))


def save_png(name, width, height, colour_type, pixel):
    rows = b"".join(b"\0" + b"".join(bytes(pixel(x, y)) for x in range(width)) for y in range(height))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", width, height, 8, colour_type, 0, 0, 0)
    with open(path(name), "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header))
        out.write(chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


GREY, RGB, RGBA = 0, 2, 6
save_png("shapes/tile.png", 8, 8, RGB,
         lambda x, y: (0x49, 0x74, 0xBA) if (x // 4 + y // 4) % 2 else (0xEE, 0xEE, 0xFF))
save_png("bitmaps/alpha.png", 16, 16, RGBA, lambda x, y: (0xD9, 0x53, 0x4F, x * 17))
save_png("bitmaps/mask.png", 40, 40, GREY, lambda x, y: (255 if (x - 20) ** 2 + (y - 20) ** 2 < 360 else 0,))
save_wave("sound/tone.wav", 1, 2, 11025, (struct.pack("<h", int(12000 * math.sin(i * 0.25))) for i in range(5512)))
save_wave("sound/stereo8.wav", 2, 1, 22050,
          (bytes((128 + int(90 * math.sin(i * 0.1)), 128 + int(60 * math.sin(i * 0.2)))) for i in range(4410)))


def tone(seconds, rate, hertz, level):
    """Samples of a sine whose level (root mean square, 1 is full scale) is a number or a function of the time."""
    at = level if callable(level) else lambda t: level
    return [at(i / rate) * math.sqrt(2) * math.sin(2 * math.pi * hertz * i / rate) for i in range(int(seconds * rate))]


def mono16(samples):
    return [struct.pack("<h", round(32767 * s)) for s in samples]


# Five steps of a tenth of a second, each louder than the one before: which part of it is heard can be told.
save_wave("sound/steps.wav", 1, 2, 22050, mono16(tone(0.5, 22050, 500, lambda t: 0.1 * (1 + int(t * 10)))))
for rate, hertz in ((5512, 300), (11025, 400), (44100, 600)):
    save_wave("sound/tone%d.wav" % rate, 1, 2, rate, mono16(tone(0.3, rate, hertz, 0.3)))
# Both channels differ in level and height.
save_wave("sound/stereo16.wav", 2, 2, 22050,
          (struct.pack("<hh", round(32767 * l), round(32767 * r))
           for l, r in zip(tone(0.3, 22050, 500, 0.4), tone(0.3, 22050, 250, 0.2))))
save_wave("sound/mono8.wav", 1, 1, 11025, (bytes((128 + round(127 * s),)) for s in tone(0.3, 11025, 500, 0.3)))
# steps.mp3 is steps.wav at 128 kbit/s and 44100 Hz: lame --resample 44.1 -b 128 steps.wav steps.mp3
# Frames of MPEG 1 layer 3, 128 kbit/s, 44100 Hz, one channel, that hold nothing but silence; a name tag first.
with open(path("sound/silence.mp3"), "wb") as out:
    out.write(b"ID3\x03\0\0\0\0\0\x0A" + b"\0" * 10)
    out.write((b"\xFF\xFB\x90\xC4" + b"\0" * 413) * 20)
