#!/usr/bin/python3
"""Reads an offload data file from the format's own tables and prints it.

usage: offload_reader.py FILE.offload

First line: version samples mute interval_us compression crosslines inlines
first_crossline first_inline crossline_inc inline_inc offset sequence count
names... (the table's attribute names).
Then one line per bin: fold, the table's values in table order, and the
stored samples (unpacked when packed). Dead bins print a fold of 0 only.
"""
import struct
import sys

import numpy as np

data = open(sys.argv[1], "rb").read()
order = "<" if 0 < struct.unpack("<i", data[0:4])[0] <= 1000 else ">"
w = lambda i: struct.unpack(order + "i", data[4 * i:4 * i + 4])[0]
h0 = w(0)
assert 0 < h0 <= 1000 and w(1) == 77479, "not an offload file"
L = w(7)
rec = lambda r: 4 * L * (r - 1)
version, ns, mute, compression = w(59), w(2), w(18), w(17)
offset = struct.unpack(order + ("f" if version == 2 else "i"), data[88:92])[0]
bins = w(9) * w(10)
names, types, lengths = [], [], []
t = rec(w(31))
for k in range(w(6)):
    kind, _, length = struct.unpack(order + "3i", data[t + 92 * k:t + 92 * k + 12])
    names.append(data[t + 92 * k + 12:t + 92 * k + 92].decode().strip())
    types.append("i" if kind == 1 else "f")
    lengths.append(length)
print(version, ns, mute, w(4), compression, w(9), w(10), w(11), w(12), w(13), w(14), offset, w(21), w(64),
      " ".join(names))
folds = struct.unpack(order + "%di" % bins, data[rec(w(33)):rec(w(33)) + 4 * bins])
mask = None
if w(89) == 995:
    m = rec(w(33) + bins // L + 1)
    mask = struct.unpack(order + "%di" % bins, data[m:m + 4 * bins])
stored = ns - mute
for b in range(bins):
    if folds[b] == 0:
        print(0)
        continue
    r = rec(w(34) + (mask[b] if mask else b))
    if compression:
        scale = struct.unpack(order + "f", data[r:r + 4])[0]
        shorts = np.frombuffer(data[r + 4:r + 4 + 2 * stored], dtype=order + "i2").astype(np.float32)
        samples = np.zeros(stored, np.float32) if scale < 1e-20 else shorts * (np.float32(1.0) / np.float32(scale))
    else:
        samples = np.frombuffer(data[r:r + 4 * stored], dtype=order + "f4")
    values, at = [], r + 4 * w(8)
    for kind, length in zip(types, lengths):
        values += struct.unpack(order + kind * length, data[at:at + 4 * length])
        at += 4 * length
    print(folds[b], " ".join(repr(float(v)) for v in values), " ".join(repr(float(v)) for v in samples))
