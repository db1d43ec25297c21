#!/usr/bin/python3
"""Writes a small offload data file from the format's own tables, and a
text file of the values a reader must find in it.

usage: offload_fixture.py OUT.offload EXPECT.txt ORDER VERSION SHAPE COMPRESSED [reference]
  ORDER      '<' little or '>' big endian
  VERSION    1 (integer offsets) or 2 (float offsets)
  SHAPE      991 rectangular or 995 polygonal
  COMPRESSED 0 floats, 1 16-bit integers with a scaler

Survey: 3 inlines (10, 12, 14) by 4 crosslines (100..103), bins inline by
inline; bins 1, 6 and 12 are dead. Samples: 9 per trace, mute 2, so 7 are
stored. Table: SUBLINE (int), CDP (int), ELEV (float).
The expectation file has one line per bin: fold, SUBLINE, CDP, ELEV and
the 7 stored samples as the reader must return them.

With "reference" the file holds instead the shared store suite's content:
4 inlines of 3 crosslines (a CDP is an inline), no dead bins, no mute, 5 samples of 10 * bin + sample (1 to 5) at 4 ms,
and the table SUBLINE, CDP (1 1 1 2 2 2 ...), OFFSET (100 200 300 ...).
"""
import struct
import sys

import numpy as np

out, expect, order, version, shape, compressed = sys.argv[1:7]
version, shape, compressed = int(version), int(shape), int(compressed)
REFERENCE = sys.argv[7:8] == ["reference"]
NIL, NXL, HDR, NS, MUTE = 3, 4, 100, 9, 2
DEAD = {1, 6, 12}
ATTRS = [("SUBLINE", 1), ("CDP", 1), ("ELEV", 2)]
if REFERENCE:
    NIL, NXL, NS, MUTE, DEAD = 4, 3, 5, 0, set()
    ATTRS = [("SUBLINE", 1), ("CDP", 1), ("OFFSET", 1)]
STORED = NS - MUTE
BINS = NIL * NXL

w3 = len(ATTRS)
w8 = (STORED - 1) // 2 + 2 if compressed else STORED
L = w3 + w8
w5, w6 = 23 * len(ATTRS), len(ATTRS)
table_rec = ((HDR - 1) // L) * 4 + 2
fold_rec = table_rec + (w5 - 1) // L + 1
first_trace = fold_rec + BINS // L + 1
mask_rec = None
if shape == 995:
    mask_rec = first_trace
    first_trace = mask_rec + BINS // L + 1


def off(value):
    if version == 1:
        return struct.pack(order + "i", int(value))
    return struct.pack(order + "f", float(value))


h = [0] * HDR
h[0], h[1], h[2], h[3], h[4], h[5], h[6], h[7], h[8] = HDR, 77479, NS, w3, 4000, w5, w6, L, w8
h[9], h[10], h[11], h[12], h[13], h[14] = NXL, NIL, 100, 10, 1, 2
h[17], h[18], h[19], h[20], h[21] = compressed, MUTE, 100 + NXL - 1, 10 + 2 * (NIL - 1), 2
h[31], h[33], h[34], h[59], h[60], h[64], h[89] = table_rec, fold_rec, first_trace, version, 4242, 3, shape
words = bytearray(b"".join(struct.pack(order + "i", v) for v in h))
words[60:64] = struct.pack(order + "f", 25.0)
words[64:68] = struct.pack(order + "f", 12.5)
offsets = (100.5, 50.25) if version == 2 else (100, 50)
words[88:92] = off(offsets[0] + offsets[1])
words[244:248] = off(offsets[0])
words[248:252] = off(offsets[1])
words[252:256] = off(offsets[0] + 2 * offsets[1])

rec_bytes = 4 * L
data = bytearray(rec_bytes * (first_trace - 1))
data[0:len(words)] = words


def put(record, payload):
    start = rec_bytes * (record - 1)
    end = start + len(payload)
    if end > len(data):
        data.extend(bytes(end - len(data)))
    data[start:end] = payload


table = b""
for name, kind in ATTRS:
    table += struct.pack(order + "3i", kind, kind, 1) + name.ljust(80).encode()
put(table_rec, table)
folds = [0 if b in DEAD else 1 + b % 3 for b in range(1, BINS + 1)]
put(fold_rec, struct.pack(order + "%di" % BINS, *folds))
mask, pos = [], 0
for b in range(1, BINS + 1):
    if b in DEAD:
        mask.append(-1)
    else:
        mask.append(pos)
        pos += 1
if mask_rec:
    put(mask_rec, struct.pack(order + "%di" % BINS, *mask))

lines = []
for b in range(1, BINS + 1):
    samples = np.array([(b * 10 + s) * (-1) ** s + 0.37 * s for s in range(STORED)], dtype=np.float32)
    if b == 5:
        samples[:] = 0.0  # a zero trace: its scaler reads as zeros
    sub, cdp, elev = 1000 + b, 7 * b, np.float32(0.25 * b - 1)
    if REFERENCE:
        samples = np.array([10 * b + s + 1 for s in range(STORED)], dtype=np.float32)
        cdp, elev = (b - 1) // 3 + 1, 100 * ((b - 1) % 3 + 1)
    if compressed:
        m = float(np.max(np.abs(samples)))
        scale = np.float32(0.0 if m < 1e-30 else 32766.0 / m)
        shorts = np.trunc(samples * scale).astype(np.int16)
        padded = np.zeros(STORED + STORED % 2, dtype=np.int16)
        padded[:STORED] = shorts
        trace = struct.pack(order + "f", scale) + padded.astype(order + "i2").tobytes()
        if scale < 1e-20:
            got = np.zeros(STORED, dtype=np.float32)
        else:
            got = shorts.astype(np.float32) * (np.float32(1.0) / scale)
    else:
        trace = samples.astype(order + "f4").tobytes()
        got = samples
    rec = trace + struct.pack(order + ("iii" if REFERENCE else "iif"), sub, cdp, elev)
    if b in DEAD:
        got = np.zeros(STORED, dtype=np.float32)
        sub, cdp, elev = 0, 0, np.float32(0)
        if shape == 991:
            put(first_trace + b - 1, bytes(rec_bytes))
    elif shape == 991:
        put(first_trace + b - 1, rec)
    else:
        put(first_trace + mask[b - 1], rec)
    lines.append(" ".join([str(folds[b - 1]), str(sub), str(cdp), repr(float(elev))] +
                          [repr(float(v)) for v in got]))
with open(out, "wb") as f:
    f.write(data)
with open(expect, "w") as f:
    f.write("\n".join(lines) + "\n")
