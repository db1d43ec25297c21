#!/usr/bin/python3
"""Writes small Nyx trace files from the layouts of the format.

usage: nyx_fixture.py KIND OUT ORDER FORMAT [N] [NS] [stack]
  KIND    cst (traces back to back), dat (prologue, history trace, blocks)
          or tape (OUT1.tap and OUT2.tap, tape images holding 30 bytes and
          then the traces of a cst file, split across the two)
  ORDER   '<' little or '>' big endian
  FORMAT  data format: 1 (16-bit, exponent 1), 2 (16-bit, scale 0.5),
          3 (IBM float), 5 (IEEE float)
  N, NS   traces (default 12) and samples per trace (default 5)
  stack   one trace per CMP (CMP 10 + i - 1), as in a stacked line

Trace i (from 1), 64 header words of 32 bits:
  0 i; 1 SHOT.UNIQUE.ID 1000 + (i-1)//3; 2 CHANNEL (i-1)%3 + 1;
  3 RECEIVER 500 + i; 4 CMP 10 + (i-1)//2; 5 OFFSET 100 * ((i-1)%3 + 1);
  6 WDEPTH 50.5 + i (float); 7 trace type 1; 8 FORMAT; 9 bytes of samples;
  10 NS; 11 sample interval 4000 us; 12 exponent 1; 13 scale 0.5 (float);
  15 FORMAT; 19 (i-1)//3 + 1; words 20 to 63 hold 10000 * word + i.
Sample s (from 0) of trace i: the stored number 10 * i + s + 1 (so it
reads as twice that in format 1 and half of it in format 2).

The dat file: a word 224; 26, 38 and 160 bytes of text; a word 16 and a
16-byte history trace starting with -1; a comment block (type 1); a trace
block of type 7 with 8 additional bytes holding the first half of the
traces; a trace block of type 15 with the rest. Block headers are six
words: size with the header, type, byte swap flag (1 for '>'), traces,
FORMAT, additional bytes.
"""
import struct
import sys

kind, out, order, fmt = sys.argv[1], sys.argv[2], sys.argv[3], int(sys.argv[4])
n = int(sys.argv[5]) if len(sys.argv) > 5 else 12
ns = int(sys.argv[6]) if len(sys.argv) > 6 else 5
stack = len(sys.argv) > 7 and sys.argv[7] == 'stack'
size = {1: 2, 2: 2, 3: 4, 5: 4}[fmt]


def ibm(value):
    if value == 0:
        return 0
    sign = 0x80000000 if value < 0 else 0
    value = abs(value)
    exponent = 64
    while value >= 1.0:
        value /= 16.0
        exponent += 1
    while value < 1.0 / 16.0:
        value *= 16.0
        exponent -= 1
    return sign | (exponent << 24) | int(round(value * (1 << 24)))


def trace(i):
    words = [0] * 64
    words[0:6] = [i, 1000 + (i - 1) // 3, (i - 1) % 3 + 1, 500 + i, 10 + (i - 1) // (1 if stack else 2),
                  100 * ((i - 1) % 3 + 1)]
    words[7:13] = [1, fmt, ns * size, ns, 4000, 1]
    words[15] = fmt
    words[19] = (i - 1) // 3 + 1
    for w in range(20, 64):
        words[w] = 10000 * w + i
    head = bytearray(struct.pack(order + "64i", *words))
    struct.pack_into(order + "f", head, 24, 50.5 + i)
    struct.pack_into(order + "f", head, 52, 0.5)
    values = [10 * i + s + 1 for s in range(ns)]
    if fmt in (1, 2):
        body = struct.pack(order + "%dh" % ns, *values)
    elif fmt == 3:
        body = struct.pack(order + "%dI" % ns, *[ibm(v) for v in values])
    else:
        body = struct.pack(order + "%df" % ns, *values)
    return bytes(head) + body


traces = [trace(i) for i in range(1, n + 1)]
if kind == "cst":
    data = b"".join(traces)
elif kind == "dat":
    w = lambda *v: struct.pack(order + "%di" % len(v), *v)
    swap = 1 if order == ">" else 0
    data = w(224) + b"NYX DAT FIXTURE".ljust(26) + b"JOB 1".ljust(38) + b"two blocks".ljust(160)
    data += w(16) + w(-1, 0, 0, 0)
    data += w(32, 1, swap, 0, fmt, 0) + b"comment!"
    half = n // 2
    first, rest = b"".join(traces[:half]), b"".join(traces[half:])
    data += w(24 + 8 + len(first), 7, swap, half, fmt, 8) + b"\0" * 8 + first
    data += w(24 + len(rest), 15, swap, n - half, fmt, 0) + rest
elif kind == "tape":
    stream = b"LABEL OF THIRTY BYTES ........" + b"".join(traces)
    assert len(stream) == 30 + sum(len(t) for t in traces)
    cut = len(stream) // 2 + 7
    for name, part in ((out + "1.tap", stream[:cut]), (out + "2.tap", stream[cut:])):
        image = b""
        for k in range(0, len(part), 300):
            block = part[k:k + 300]
            image += struct.pack("<I", len(block)) + block + struct.pack("<I", len(block))
        image += struct.pack("<I", 0)
        with open(name, "wb") as f:
            f.write(image)
    sys.exit(0)
else:
    sys.exit("unknown kind " + kind)
with open(out, "wb") as f:
    f.write(data)
