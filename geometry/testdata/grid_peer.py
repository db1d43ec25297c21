#!/usr/bin/python3
"""Independent geometry of a rotated bin grid, for checking the C++ grid.

Arguments: x0 y0 angle fil iinc dy fxl xinc dx, where (x0, y0) is the
real-world position of bin (fil, fxl), angle (radians, counter-clockwise
from the x axis) the direction in which crossline numbers grow by xinc per
dx, and inline numbers grow by iinc per dy a right angle further on.
Standard input: lines "B il xl" (a bin, fractional allowed) or "W x y" (a
real-world point). Output: one line each, "x y" for a bin, "il xl" for a
point, by numpy matrices rather than by formulas of the grid itself.
"""
import sys

import numpy as np


def main():
    x0, y0, angle, fil, iinc, dy, fxl, xinc, dx = map(float, sys.argv[1:10])
    turn = np.array([[np.cos(angle), -np.sin(angle)], [np.sin(angle), np.cos(angle)]])
    # Columns: real-world step of one crossline number, of one inline number.
    axes = turn @ np.diag([dx / xinc, dy / iinc])
    origin = np.array([x0, y0])
    for line in sys.stdin:
        kind, a, b = line.split()
        if kind == "B":
            p = origin + axes @ np.array([float(b) - fxl, float(a) - fil])
            print("%.10f %.10f" % (p[0], p[1]))
        else:
            xl, il = np.linalg.solve(axes, np.array([float(a), float(b)]) - origin)
            print("%.10f %.10f" % (il + fil, xl + fxl))


if __name__ == "__main__":
    main()
