#!/usr/bin/python3
"""Writes a demultiplexed SEG-D field record (rev 1 layout) for the tests.

Laid out from the public SEG-D standard, independently of the C++ reader:
general header block 1 (and block 2 when asked), one channel set descriptor
per channel set of each scan type, sample skew, extended and external
header blocks, then per trace a 20-byte demultiplexed trace header and its
samples in format 8015 (20-bit binary: four 4-bit exponents, then four
16-bit two's complement fractions, per group of four samples) or 8058
(big-endian IEEE single). A file named *.dsegd gets 2048 bytes of filler
between the headers and the first trace.

Sample s (from 1) of trace t (from 1) is (-1)**s * (1000 t + s) / 8, or the
values of --values for every trace. Trace header fields: file number
--ffid, channel set --chanset, trace number t (or, with --reference, file
number (t-1)//3+1 and trace number 100 ((t-1)%3+1)). A file number above
9999 is written as FFFF with the number in bytes 17-19, a channel set
above 99 as FF with the number in bytes 15-16, both as BCD digits as this
system's readers take them.
"""
import argparse
import struct
import sys

import numpy as np


def bcd(value, ndigits):
    """value as ndigits BCD digits (ndigits even), most significant first."""
    digits = str(value).rjust(ndigits, "0")
    if len(digits) != ndigits:
        raise ValueError("%d does not fit %d digits" % (value, ndigits))
    return bytes(int(digits[k]) << 4 | int(digits[k + 1]) for k in range(0, ndigits, 2))


def general_header(a):
    h = bytearray(32)
    h[0:2] = bcd(a.ffid, 4) if a.ffid <= 9999 else b"\xff\xff"
    h[2:4] = b"\x80\x1a" if a.bad_bcd else bcd(a.format, 4)
    h[10] = bcd(26, 2)[0]                     # year
    h[11] = (a.additional << 4) | 0           # additional blocks, day hundreds
    h[12] = bcd(5, 2)[0]                      # day of year
    h[13:16] = bcd(123456, 6)                 # hour minute second
    h[16] = bcd(20, 2)[0]                     # manufacturer
    h[22] = a.interval                        # base scan interval, 1/16 ms
    # Record type 8 (normal) in the high nibble, then three digits of record
    # length in tenths of 0.512 s.
    r = bcd(a.record, 4)
    h[24] = 0
    h[25] = 0x80 | (r[0] & 0x0F)
    h[26] = r[1]
    h[27] = bcd(a.scan_types, 2)[0]
    h[28] = bcd(a.channel_sets, 2)[0]
    h[29] = bcd(a.skew, 2)[0]
    h[30] = bcd(a.extended, 2)[0]
    h[31] = bcd(a.external, 2)[0]
    return bytes(h)


def general_header_2(a):
    h = bytearray(32)
    h[0:3] = struct.pack(">I", a.ffid)[1:]    # expanded file number, binary
    h[10:12] = b"\x01\x00"                    # revision 1.0
    h[31] = 2                                 # general header block number
    return bytes(h)


def channel_set(a, scan_type, number, channels):
    h = bytearray(32)
    h[0] = bcd(scan_type, 2)[0]
    h[1] = bcd(number, 2)[0]
    h[2:4] = struct.pack(">H", 0)                         # start, 2 ms units
    h[4:6] = struct.pack(">H", a.record * 512 // 10 // 2)  # end, 2 ms units
    h[8:10] = bcd(channels, 4)
    h[10] = 0x10                                          # seismic channels
    return bytes(h)


def encode_8015(values):
    assert len(values) % 4 == 0
    out = bytearray()
    for g in range(0, len(values), 4):
        exps, fracs = [], []
        for v in values[g:g + 4]:
            # The smallest exponent whose fraction holds the value exactly.
            for e in range(16):
                q = v * 2.0 ** (15 - e)
                if -32768 <= q <= 32767:
                    break
            if q != int(q):
                raise ValueError("%r is not exact in 8015" % v)
            exps.append(e)
            fracs.append(int(q))
        out += bytes([exps[0] << 4 | exps[1], exps[2] << 4 | exps[3]])
        out += struct.pack(">4h", *fracs)
    return bytes(out)


def trace_header(a, t):
    h = bytearray(20)
    ffid = (t - 1) // 3 + 1 if a.reference else a.ffid
    number = 100 * ((t - 1) % 3 + 1) if a.reference else t
    if ffid <= 9999:
        h[0:2] = bcd(ffid, 4)
    else:
        h[0:2] = b"\xff\xff"
        h[17:20] = bcd(ffid, 6)
    h[2] = bcd(1, 2)[0]
    if a.chanset <= 99:
        h[3] = bcd(a.chanset, 2)[0]
    else:
        h[3] = 0xFF
        h[15:17] = bcd(a.chanset, 4)
    h[4:6] = bcd(number, 4)
    h[6:9] = struct.pack(">I", 0x000180)[1:]   # first timing word: 1.5 ms
    h[9] = 1 if t in a.extended_trace else 0
    h[11] = 2 if t in a.muted else 0
    return bytes(h)


def main():
    p = argparse.ArgumentParser()
    p.add_argument("out")
    p.add_argument("--format", type=int, default=8058)
    p.add_argument("--traces", type=int, default=4)
    p.add_argument("--record", type=int, default=5, help="record length, tenths of 0.512 s")
    p.add_argument("--interval", type=lambda s: int(s, 0), default=0x10)
    p.add_argument("--ffid", type=int, default=1234)
    p.add_argument("--chanset", type=int, default=1)
    p.add_argument("--additional", type=int, default=0)
    p.add_argument("--scan-types", type=int, default=1)
    p.add_argument("--channel-sets", type=int, default=1)
    p.add_argument("--skew", type=int, default=0)
    p.add_argument("--extended", type=int, default=0)
    p.add_argument("--external", type=int, default=0)
    p.add_argument("--muted", type=int, nargs="*", default=[])
    p.add_argument("--extended-trace", type=int, nargs="*", default=[])
    p.add_argument("--values", type=float, nargs="*")
    p.add_argument("--reference", action="store_true")
    p.add_argument("--bad-bcd", action="store_true")
    a = p.parse_args()

    nsamples = int(np.float32(a.record) / np.float32(10) * np.float32(0.512) * np.float32(1000))
    out = bytearray(general_header(a))
    if a.additional:
        out += general_header_2(a)
        out += bytes(32 * (a.additional - 1))
    for st in range(1, a.scan_types + 1):
        for cs in range(1, a.channel_sets + 1):
            out += channel_set(a, st, cs, a.traces)
        out += bytes(32 * a.skew)
    out += bytes(32 * a.extended) + bytes(32 * a.external)
    if a.out.lower().endswith(".dsegd"):
        out += b"\xee" * 2048
    for t in range(1, a.traces + 1):
        if a.values:
            values = (list(a.values) * nsamples)[:nsamples]
        else:
            values = [(-1) ** s * (1000 * t + s) / 8.0 for s in range(1, nsamples + 1)]
        out += trace_header(a, t)
        if a.format == 8015:
            out += encode_8015(values[: nsamples // 4 * 4])
        else:
            out += np.asarray(values, dtype=">f4").tobytes()
    with open(a.out, "wb") as f:
        f.write(out)
    return 0


if __name__ == "__main__":
    sys.exit(main())
