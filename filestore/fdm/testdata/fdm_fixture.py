#!/usr/bin/python3
"""Writes a small FDM velocity volume from the format's header table.

usage: fdm_fixture.py OUT.fdm ORDER [NX NY NZ] [--ncrossline F] [--plain] [--cut N]
  ORDER          '<' little or '>' big endian
  NX NY NZ       crosslines, inlines, samples (default 4 3 5)
  --ncrossline F the crossline count word written as the float F instead
  --plain        no extended header (the words from byte 72 stay zero)
  --cut N        keep only the first N bytes of the file

Header (floats unless noted): crossline origin 500, count NX, increment 25;
inline origin 1000, count NY, increment 12.5; Z origin 0, count NZ,
increment 4; minimum crossline 100, minimum inline 20, crossline
increment 2, inline increment 1; "VFDM" (as the word's bytes in the file's
order); version 2, distance units 0, angle units 0 (int32); north angle 0,
rotation 30 degrees.

Samples: 32-bit floats, Z fastest, then crossline, then inline; the sample
at crossline index ix, inline index iy, Z index iz is
1000 + 100 * iy + 10 * ix + iz.
"""
import struct
import sys

args = sys.argv[1:]
out, order = args[0], args[1]
flags, rest, k = {}, [], 2
while k < len(args):
    if args[k] == "--plain":
        flags["--plain"] = True
    elif args[k].startswith("--"):
        flags[args[k]] = args[k + 1]
        k += 1
    else:
        rest.append(int(args[k]))
    k += 1
nx, ny, nz = rest if rest else (4, 3, 5)

header = bytearray(512)


def put(fmt, byte, value):
    struct.pack_into(order + fmt, header, byte, value)


put("f", 0, 500.0)
put("f", 4, float(flags.get("--ncrossline", nx)))
put("f", 8, 25.0)
put("f", 12, 1000.0)
put("f", 16, float(ny))
put("f", 20, 12.5)
put("f", 24, 0.0)
put("f", 28, float(nz))
put("f", 32, 4.0)
put("f", 56, 100.0)
put("f", 60, 20.0)
put("f", 64, 2.0)
put("f", 68, 1.0)
if "--plain" not in flags:
    header[72:76] = b"VFDM" if order == "<" else b"MDFV"
    put("i", 76, 2)
    put("i", 80, 0)
    put("i", 84, 0)
    put("f", 88, 0.0)
    put("f", 92, 30.0)

values = [1000 + 100 * iy + 10 * ix + iz for iy in range(ny) for ix in range(nx) for iz in range(nz)]
data = bytes(header) + struct.pack(order + "%df" % len(values), *values)
if "--cut" in flags:
    data = data[: int(flags["--cut"])]
with open(out, "wb") as f:
    f.write(data)
