#!/usr/bin/env python3
"""Grades a NumPy picture through a LUT file: grade.py LIBLUMVANE.SO LOOK.CUBE [STRENGTH] shows what becomes of greys."""

import ctypes
import sys

import numpy as np


def grade(library, lut, picture, strength=100):
    """A graded copy of `picture`, uint8 of shape (height, width, 4): blue, green, red, alpha. Rows may have padding."""
    if picture.dtype != np.uint8 or picture.ndim != 3 or picture.shape[2] != 4:
        raise ValueError("a picture is uint8 of shape (height, width, 4)")
    if picture.strides[1:] != (4, 1) or picture.strides[0] <= 0:
        picture = np.ascontiguousarray(picture)
    height, width = picture.shape[:2]
    graded = np.array(picture, order="C")  # strength 0 leaves the destination as it is
    create = library.Create3DLutColorAdjustEffect
    create.restype = ctypes.c_void_p  # without it a handle would be cut to 32 bits
    path = ctypes.create_string_buffer(lut.encode("utf-16-le") + b"\0\0")
    handle = ctypes.c_void_p(create(path, width, height))
    if not handle:
        raise OSError(f"'{lut}' is not there, or is not a table")
    try:
        library.Lut3DColorAdjustEffectProcess(
            handle, graded.ctypes.data_as(ctypes.c_void_p), width, height, graded.strides[0],
            picture.ctypes.data_as(ctypes.c_void_p), width, height, picture.strides[0], strength)
    finally:
        library.Destory3DLutColorAdjustEffect(handle)
    return graded


if __name__ == "__main__":
    greys = np.full((1, 256, 4), 255, np.uint8)
    greys[0, :, :3] = np.arange(256)[:, None]
    result = grade(ctypes.CDLL(sys.argv[1]), sys.argv[2], greys, int(sys.argv[3]) if len(sys.argv) > 3 else 100)
    print("grey  blue green red")
    print("\n".join(f"{grey:4}  {b:4} {g:5} {r:3}" for grey, (b, g, r, _) in list(enumerate(result[0]))[::51]))
