#!/usr/bin/env python3
"""Compares how the sounds of movies come out of the player with what FFmpeg makes of the same bytes.

    bench/flash/sound/reference.py build/bin/flashrun MOVIE|FOLDER...

Each sound of each movie, and each synchronised stream, is put into a movie of its own that does nothing but play it.
What flashrun records of that is laid beside FFmpeg's decoding, in stereo, at those samples that are the sound's own and
not a converter's (at all of them where the rates have no such samples). A line for each: how far the two lie apart in
time, how loud one is to the other, and how loud what is left is to the sound itself once both are evened out, in dB: -90
is a digit of a 16-bit sample. Needs the ffmpeg command.
"""
import array
import lzma
import math
import os
import struct
import subprocess
import sys
import tempfile
import wave
import zlib

RATES = (5512, 11025, 22050, 44100)
NAMES = {0: "pcm", 1: "adpcm", 2: "mp3", 3: "pcm", 4: "nelly16", 5: "nelly8", 6: "nelly", 11: "speex"}
MP3, SPEEX = 2, 11
OUT_RATE = 44100
LONGEST = 30  # seconds that are compared


def movie_body(path):
    data = open(path, "rb").read()
    try:
        if data[:3] == b"FWS":
            return data[3], data[8:]
        if data[:3] == b"CWS":
            return data[3], zlib.decompressobj().decompress(data[8:])
        if data[:3] == b"ZWS":
            coder = lzma._decode_filter_properties(lzma.FILTER_LZMA1, data[12:17])
            return data[3], lzma.LZMADecompressor(lzma.FORMAT_RAW, filters=[coder]).decompress(data[17:])
    except (zlib.error, lzma.LZMAError):
        pass
    return 0, b""


def tags_of(body):
    at = 0
    while at + 2 <= len(body):
        head = struct.unpack_from("<H", body, at)[0]
        at += 2
        length = head & 63
        if length == 63:
            if at + 4 > len(body):
                return
            length = struct.unpack_from("<I", body, at)[0]
            at += 4
        yield head >> 6, body[at:at + length]
        at += length


def tag(code, body):
    return struct.pack("<HI", code << 6 | 63, len(body)) + body


def movie_of(tags, rate, frames):
    header = bytes((0x08, 0x00)) + struct.pack("<HH", rate, frames)
    body = header + b"".join(tags) + tag(0, b"")
    return b"FWS\x08" + struct.pack("<I", len(body) + 8) + body


class Sound:
    """Bytes of one kind: flags as the file has them, packets as a decoder takes them, a movie that plays them."""

    def __init__(self, name, flags, packets, samples, movie):
        self.name, self.flags, self.packets, self.movie = name, flags, packets, movie
        self.format = flags >> 4
        self.rate = {4: 16000, 5: 8000, SPEEX: 16000}.get(self.format, RATES[flags >> 2 & 3])
        # The player's samples to one of the sound's own.
        self.step = OUT_RATE // self.rate if self.rate in RATES else 1
        self.seconds = min(samples / self.rate, LONGEST)
        self.per_packet = 0  # samples, of ADPCM in a stream: what fills up a packet's last byte is none

    def flv(self):
        out = [b"FLV\x01\x04\x00\x00\x00\x09\x00\x00\x00\x00"]
        flags = (3 << 4 if self.format == 0 else self.format << 4) | self.flags & 15
        for number, packet in enumerate(self.packets):
            time = number * 20
            head = b"\x08" + struct.pack(">I", len(packet) + 1)[1:] + struct.pack(">I", time)[1:] + b"\0\0\0\0"
            out.append(head + bytes((flags,)) + packet + struct.pack(">I", len(packet) + 12))
        return b"".join(out)


def sounds_of(path):
    version, body = movie_body(path)
    if not body:
        return []
    size = ((body[0] >> 3) * 4 + 5 + 7) // 8
    rate = struct.unpack_from("<H", body, size)[0]
    found = []

    def walk(tags, where):
        head, blocks, frame, streams = None, [], [], []
        for code, data in tags:
            if code == 14 and len(data) > 7:
                number, flags, samples = struct.unpack_from("<HBI", data)
                packets = [data[9:] if flags >> 4 == MP3 else data[7:]]
                movie = movie_of([tag(14, data), tag(15, data[:2] + b"\0"), tag(1, b"")], 0x0C00, 1)
                found.append(Sound(f"sound {number}", flags, packets, samples, movie))
            elif code in (18, 45) and len(data) >= 4:
                head = (code, data)
            elif code == 19 and head:
                blocks.append(data)
                frame.append(tag(19, data))
            elif code == 1 and head:
                frame.append(tag(1, b""))
            elif code == 39:
                walk(tags_of(data[4:]), f"sprite {data[0] | data[1] << 8}")
        if head and blocks:
            flags = head[1][1]
            is_mp3 = flags >> 4 == MP3
            samples = sum(b[0] | b[1] << 8 for b in blocks) if is_mp3 else \
                len(blocks) * struct.unpack_from("<H", head[1], 2)[0]
            packets = [b[4:] if is_mp3 else b for b in blocks]
            movie = movie_of([tag(*head)] + frame, rate, max(frame.count(tag(1, b"")), 1))
            found.append(Sound(f"stream of {where}", flags, packets, samples, movie))
            if flags >> 4 == 1 and len(set(map(len, packets))) == 1:
                found[-1].per_packet = struct.unpack_from("<H", head[1], 2)[0]

    walk(tags_of(body[size + 4:]), "the movie")
    return found


def reference_of(sound, folder):
    path = os.path.join(folder, "sound.mp3" if sound.format == MP3 else "sound.flv")
    with open(path, "wb") as file:
        file.write(b"".join(sound.packets) if sound.format == MP3 else sound.flv())
    both = "pan=stereo|c0=c0|c1=c1" if sound.flags & 1 else "pan=stereo|c0=c0|c1=c0"
    done = subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-af", both, "-f", "s16le",
                           "-ar", str(sound.rate if sound.step > 1 else OUT_RATE), "-"], capture_output=True)
    samples = array.array("h")
    samples.frombytes(done.stdout[:len(done.stdout) // 4 * 4])
    decoded = len(samples) // 2 // len(sound.packets)
    if sound.per_packet and sound.per_packet < decoded:
        whole = samples
        samples = array.array("h")
        for start in range(0, decoded * len(sound.packets), decoded):
            samples.extend(whole[start * 2:(start + sound.per_packet) * 2])
    return samples[0::2], samples[1::2]


def recorded_of(sound, runner, folder):
    movie, out = os.path.join(folder, "sound.swf"), os.path.join(folder, "sound.wav")
    with open(movie, "wb") as file:
        file.write(sound.movie)
    subprocess.run([runner, "record", movie, "--out", out, "--ms", str(int(sound.seconds * 1000) + 300)], check=True)
    with wave.open(out) as file:
        samples = array.array("h")
        samples.frombytes(file.readframes(file.getnframes()))
    return samples[0::2], samples[1::2]


def energy(values):
    return sum(v * v for v in values)


def lags_between(ours, theirs, step):
    """By how many samples ours may come later, the least first; they are matched where theirs are loudest. The player leaves out the silence
    that an MP3 begins with, up to two of its frames, and FFmpeg may not; FFmpeg leaves out what an encoder says that it
    has put before the sound, and the player does not. A tone matches after each of its periods."""
    window, earlier, later = 1000 // step + 50, 8000, 4000
    window = min(window, len(theirs) // 2)
    limit = min(len(theirs), LONGEST * OUT_RATE // step) - window
    if limit <= 0:
        return [0]
    at = max(range(0, limit, window), key=lambda i: energy(theirs[i:i + window]))
    pattern = theirs[at:at + window]
    first = -min(earlier, at * step)
    apart = []
    for lag in range(first, later):
        begin = at * step + lag
        piece = ours[begin:begin + window * step:step]
        if len(piece) < window:
            break
        apart.append(sum((a - b) * (a - b) for a, b in zip(piece, pattern)))
    if not apart:
        return [0]
    near = min(apart) + energy(pattern) / 100
    lowest = [i for i, value in enumerate(apart) if value <= near and value == min(apart[max(i - step, 0):i + step + 1])]
    return sorted((i + first for i in lowest), key=abs)


def compare(ours, theirs, sound):
    """@returns lag in ms, gain in dB, what is left in dB; None when one of them is silent, False when both are"""
    lags, best = lags_between(ours[0], theirs[0], sound.step), None
    for lag in lags:
        result = compare_at(lag, ours, theirs, sound)
        if best is None or not best or result and result[2] < best[2] - 0.5:
            best = result
    return best


def compare_at(lag, ours, theirs, sound):
    step = sound.step
    # FFmpeg plays all of the first and the last packet, the player from where to where the file says.
    first = max(0, math.ceil(-lag / step))
    count = int((sound.seconds * OUT_RATE - lag) / step)
    both = theirs_all = ours_all = 0
    for our, their in zip(ours, theirs):
        our = our[lag:] if lag >= 0 else array.array("h", [0] * -lag) + our
        for a, b in zip(our[first * step::step], their[first:count]):
            both += a * b
            ours_all += a * a
            theirs_all += b * b
    if not theirs_all or not ours_all:
        return None if theirs_all or any(map(any, ours)) else False
    gain = both / theirs_all
    left = max(ours_all - gain * both, ours_all * 1e-12)
    return lag / OUT_RATE * 1000, 20 * math.log10(max(gain, 1e-9)), 10 * math.log10(left / ours_all)


def movies_of(paths):
    for path in paths:
        if os.path.isfile(path):
            yield path
        for folder, _, names in sorted(os.walk(path)):
            yield from (os.path.join(folder, name) for name in sorted(names) if name.endswith(".swf"))


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    runner, seen, worst = sys.argv[1], set(), -math.inf
    print(f"{'movie':40} {'sound':22} {'kind':8} {'Hz':>5} {'s':>6} {'lag ms':>7} {'gain dB':>8} {'left dB':>8}")
    for path in movies_of(sys.argv[2:]):
        for sound in sounds_of(path):
            key = (sound.flags, b"".join(sound.packets))
            if key in seen or not sound.seconds:
                continue
            seen.add(key)
            with tempfile.TemporaryDirectory() as folder:
                result = compare(recorded_of(sound, runner, folder), reference_of(sound, folder),
                                 sound)
            name = "/".join(path.split(os.sep)[-2:])
            line = f"{name[-40:]:40} {sound.name:22} {NAMES.get(sound.format, '?'):8} {sound.rate:5} {sound.seconds:6.2f}"
            if not result:
                print(line, "  silent" if result is False else "  silent on one side")
                continue
            worst = max(worst, result[2])
            print(f"{line} {result[0]:7.2f} {result[1]:8.2f} {result[2]:8.1f}", flush=True)
    print(f"{len(seen)} sounds; the one that differs most: {worst:.1f} dB")


if __name__ == "__main__":
    main()
