#!/usr/bin/env python3
"""Writes the sample looks to this folder: original grades, free to use.

Each look is a function of red, green and blue from 0 to 1, sampled on a lattice and written as a .cube table: red
varies fastest, blue slowest.
"""
import pathlib

LUMA = (0.2126, 0.7152, 0.0722)  # Rec. ITU-R BT.709


def smooth(x):
    """An S-shaped contrast curve on 0..1."""
    x = min(max(x, 0.0), 1.0)
    return x * x * (3.0 - 2.0 * x)


def luma(rgb):
    return sum(w * c for w, c in zip(LUMA, rgb))


def teal_orange(rgb):
    """More contrast, teal shadows, orange highlights."""
    y = luma(rgb)
    shadows, lights = (0.02, 0.10, 0.13), (1.00, 0.93, 0.80)
    out = []
    for c, low, high in zip(rgb, shadows, lights):
        c = 0.35 * c + 0.65 * smooth(c)
        out.append(low * (1.0 - y) ** 2 + c * (high * y + (1.0 - y) * (1.0 - low)))
    return [y + 1.15 * (c - y) if c > y else c for c in out]


def silver(rgb):
    """Black and white with a warm tone, darker blues, lifted blacks."""
    y = 0.45 * rgb[0] + 0.45 * rgb[1] + 0.10 * rgb[2]
    y = 0.04 + 0.94 * smooth(y)
    return [min(1.0, y * 1.03), y, y * 0.93]


LOOKS = {"teal_orange": (17, teal_orange), "silver": (9, silver)}


def main():
    for name, (size, look) in LOOKS.items():
        lines = [f'TITLE "{name}"', f"LUT_3D_SIZE {size}"]
        grid = [i / (size - 1) for i in range(size)]
        for blue in grid:
            for green in grid:
                for red in grid:
                    lines.append(" ".join(f"{min(max(c, 0.0), 1.0):.5f}" for c in look((red, green, blue))))
        path = pathlib.Path(__file__).with_name(f"{name}.cube")
        path.write_text("\n".join(lines) + "\n", encoding="ascii")


if __name__ == "__main__":
    main()
