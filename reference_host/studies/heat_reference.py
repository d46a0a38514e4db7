#!/usr/bin/python3
"""Computes the heat of the cylinder in the case `heat` by boundary collocation.

    heat_reference.py [TERMS]

A cylinder of radius 1/2 and temperature 1 is at (2, 2) in a channel with cold walls at y = 0 and
y = 4.1 and a cold inlet at x = 0. The map w = cosh(pi z / 4.1) takes the half strip to the upper
half plane and both walls and the inlet to its edge, on which the temperature is 0. There it is

    T = Re( a0 ln((w - conj(w0)) / (w - w0)) + sum c_k (w - w0)^-k - conj(c_k) (w - conj(w0))^-k )

with w0 the image of the center; every term is 0 on the edge. The coefficients are those of the least
squares fit of T = 1 at points of the cylinder, and the heat per unit time and depth is 2 pi a0,
because only the logarithm conducts heat through a closed curve around the cylinder. The outlet, 20
diameters downstream, changes it by about exp(-2 pi 20 / 4.1) = 5e-14.

The same fit gives the heat of a cylinder beside one cold plane, for which there is the closed form
2 pi / arcosh(distance / radius): the script prints both values as a check of the method.

The heat is printed for an increasing number of terms, up to TERMS (24 by default), with the largest
error of T on the cylinder between the points of the fit. It exits with 1 if the last two values
differ by more than 1e-8 or the check fails by more than 1e-8.
"""

import sys

import numpy as np

RADIUS = 0.5
HEIGHT = 4.1
CENTER = 2.0 + 2.0j


def terms_at(points, origin, count):
    """Columns of the fit: the logarithm, then real and imaginary part of each multipole."""
    columns = [np.log(np.abs((points - np.conj(origin)) / (points - origin)))]
    scale = np.max(np.abs(points - origin))  # keeps the columns of order 1
    for k in range(1, count + 1):
        here = (scale / (points - origin)) ** k
        image = (scale / (points - np.conj(origin))) ** k
        columns.append(np.real(here - image))
        columns.append(np.real(1j * here + 1j * image))
    return np.column_stack(columns)


def heat(mapping, center, count):
    """Heat per depth and the largest error of the temperature on the cylinder."""
    n_points = 16 * (count + 1)

    def columns(offset):
        angles = 2.0 * np.pi * (np.arange(n_points) + offset) / n_points
        points = mapping(center + RADIUS * np.exp(1j * angles))
        return terms_at(points, mapping(center), count)

    solution = np.linalg.lstsq(columns(0.0), np.ones(n_points), rcond=None)[0]
    error = np.max(np.abs(columns(0.5) @ solution - 1.0))
    return 2.0 * np.pi * solution[0], error


def main():
    try:
        most = int(sys.argv[1]) if len(sys.argv) > 1 else 24
        if most < 4 or len(sys.argv) > 2:
            raise ValueError
    except ValueError:
        print("heat_reference.py: give one number of terms, at least 4", file=sys.stderr)
        return 2

    print("| terms | heat per depth | largest error of T |")
    print("|---|---|---|")
    values = []
    for count in [0] + list(range(4, most + 1, 4)):
        value, error = heat(lambda z: np.cosh(np.pi * z / HEIGHT), CENTER, count)
        values.append(value)
        print(f"| {count} | {value:.10f} | {error:.1e} |")

    exact = 2.0 * np.pi / np.arccosh(2.0 / RADIUS)
    check = heat(lambda z: z, 2.0j, most)[0]
    print(f"\nBeside one plane: {check:.10f}, closed form {exact:.10f}")
    converged = len(values) > 2 and abs(values[-1] - values[-2]) < 1e-8
    if not converged or not abs(check - exact) < 1e-8:
        print("heat_reference.py: the heat has not converged to 1e-8", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
