#!/usr/bin/env python3
"""Writes resources/alarm.wav: a two-tone warble, 0.8 s, made to loop
seamlessly (16-bit mono, 22,050 Hz). Run again to regenerate."""
import math
import os
import struct
import wave

RATE = 22050
TONES = ((1320.0, 0.2), (990.0, 0.2), (1320.0, 0.2), (990.0, 0.2))  # Hz, seconds


def samples():
    out = []
    for freq, seconds in TONES:
        n = int(RATE * seconds)
        # whole cycles per tone, so every tone starts and ends at zero
        cycles = max(1, round(freq * seconds))
        for i in range(n):
            edge = min(1.0, i / 200.0, (n - 1 - i) / 200.0)  # soft edges, no clicks
            out.append(0.55 * edge * math.sin(2 * math.pi * cycles * i / n))
    return out


def main():
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "alarm.wav")
    with wave.open(path, "wb") as w:
        w.setnchannels(1)
        w.setsampwidth(2)
        w.setframerate(RATE)
        w.writeframes(b"".join(struct.pack("<h", int(s * 32767)) for s in samples()))
    print(path)


if __name__ == "__main__":
    main()
