#!/usr/bin/python3
"""Packs a trace into 16-bit offload samples as the format describes, and
unpacks it again; prints the packed record as hex on the first line and
the unpacked samples on the second.

usage: offload_pack.py N WINDOW SWAP
  N       samples; sample i is sin(0.7 i) * 100 * (i % 5 + 1), except that
          samples 0 to 4 are zero (a window of zeros when WINDOW <= 5)
  WINDOW  samples per window, 0 for one window
  SWAP    1: the two samples of each pair stored the other way round
"""
import struct
import sys

import numpy as np

n, window, swap = (int(a) for a in sys.argv[1:4])
samples = np.array([0.0 if i < 5 else np.sin(0.7 * i) * 100 * (i % 5 + 1) for i in range(n)], dtype=np.float32)
windows = (n - 1) // window + 1 if window else 1
length = window if windows > 1 else n
words = (n - 1) // 2 + (windows if windows > 1 else 0) + 2
record = bytearray(4 * words)
first_short = 2 * windows + 2 if windows > 1 else 2
if windows > 1:
    record[0:4] = struct.pack("<f", -(window + 0.1))
shorts = np.zeros(n + n % 2, dtype=np.int16)
scalers = []
for k in range(windows):
    part = samples[k * length:(k + 1) * length]
    m = float(np.max(np.abs(part)))
    scale = np.float32(0.0 if m < 1e-30 else np.float32(32766.0) / np.float32(m))
    scalers.append(scale)
    at = 4 * (k + 1) if windows > 1 else 0
    record[at:at + 4] = struct.pack("<f", scale)
    shorts[k * length:k * length + len(part)] = np.trunc(part * scale).astype(np.int16)
stored = shorts.copy()
if swap:
    stored = shorts.reshape(-1, 2)[:, ::-1].reshape(-1)
record[2 * first_short:2 * first_short + 2 * len(stored)] = stored.astype("<i2").tobytes()
out = []
for i in range(n):
    scale = scalers[i // length]
    out.append(0.0 if scale < 1e-20 else float(np.float32(shorts[i]) * (np.float32(1.0) / scale)))
print(record.hex())
print(" ".join(repr(v) for v in out))
