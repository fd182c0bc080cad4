#!/usr/bin/env python3
"""Makes the sounds of the sample movies. The WAV files in sounds/ are its output; run it again after a change."""
import math
import os
import struct
import wave

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "sounds")
RATE = 22050


def save(name, samples):
    peak = max(max(samples), -min(samples), 1e-9)
    scale = min(1.0, 0.85 / peak) * 32767
    with wave.open(os.path.join(FOLDER, name), "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(b"".join(struct.pack("<h", int(s * scale)) for s in samples))


def pitch(semitones_from_a4):
    return 440.0 * 2 ** (semitones_from_a4 / 12)


def add_tone(track, start, length, frequency, volume, attack, release, overtones=(1.0, 0.3, 0.1)):
    """Adds sines with a soft start and end. Times in seconds."""
    first, count = int(start * RATE), int(length * RATE)
    for i in range(count):
        at = first + i
        if at >= len(track):
            break
        t = i / RATE
        level = min(1.0, t / attack) * min(1.0, (length - t) / release)
        phase = 2 * math.pi * frequency * t
        track[at] += volume * level * sum(a * math.sin(phase * (n + 1)) for n, a in enumerate(overtones))


def add_pluck(track, start, frequency, volume, decay=3.0):
    first = int(start * RATE)
    for i in range(int(1.6 * RATE)):
        at = first + i
        if at >= len(track):
            break
        t = i / RATE
        level = min(1.0, t / 0.004) * math.exp(-t * decay)
        phase = 2 * math.pi * frequency * t
        track[at] += volume * level * (math.sin(phase) + 0.4 * math.exp(-t * 5) * math.sin(2 * phase))


def film():
    """Thirty seconds: four chords of 2.5 s, three times, with a melody that grows and fades."""
    track = [0.0] * (30 * RATE)
    chords = [(-12, -5, 0, 3), (-16, -9, -4, 3), (-9, -5, -2, 7), (-14, -7, -2, 5)]  # Am F C G
    melody = [12, 15, 10, 8, 7, 10, 5, 3]
    for bar in range(12):
        start = bar * 2.5
        chord = chords[bar % 4]
        for note in chord:
            add_tone(track, start, 3.1, pitch(note), 0.07, 0.6, 0.9)
        add_tone(track, start, 2.5, pitch(chord[0] - 12), 0.16, 0.08, 0.7, (1.0, 0.15))
        if bar >= 2:
            for step in range(4 if bar < 11 else 2):
                add_pluck(track, start + step * 0.625, pitch(chord[(step * 2 + 1) % 4] + 12), 0.10)
        if 4 <= bar < 11:
            add_pluck(track, start + 0.3125, pitch(melody[bar % 8] + 0), 0.16, 2.0)
            add_pluck(track, start + 1.5625, pitch(melody[(bar + 3) % 8]), 0.12, 2.0)
    for i in range(3 * RATE):  # the end fades out
        track[-1 - i] *= i / (3 * RATE)
    return track


def effect(seconds, build):
    track = [0.0] * int(seconds * RATE)
    build(track)
    return track


def main():
    os.makedirs(FOLDER, exist_ok=True)
    save("film.wav", film())
    save("catch.wav", effect(0.35, lambda t: (add_pluck(t, 0, pitch(12), 0.5, 9), add_pluck(t, 0.07, pitch(19), 0.5, 9))))
    save("miss.wav", effect(0.35, lambda t: (add_pluck(t, 0, pitch(-12), 0.6, 8), add_pluck(t, 0.09, pitch(-17), 0.6, 8))))
    save("click.wav", effect(0.08, lambda t: add_pluck(t, 0, pitch(7), 0.4, 40)))

    def over(t):
        for n, note in enumerate((3, 0, -4, -9)):
            add_pluck(t, n * 0.22, pitch(note), 0.5, 3.5)

    save("over.wav", effect(1.6, over))


main()
