#!/usr/bin/env python3
"""Compares the package with the library for all kinds of arrays: python_package.py PYTHON LIBRARY SAMPLES"""

import os
import shutil
import sys
import tempfile

try:
    import numpy as np
except ImportError:
    print("skipped: NumPy is not installed")
    sys.exit(77)

folder, os.environ["LUMVANE_LIBRARY"], samples = sys.argv[1:]
sys.path.insert(0, folder)
sys.dont_write_bytecode = True
import lumvane  # noqa: E402

library = lumvane._library()
silver = f"{samples}/silver.cube"
lut, clarity = lumvane.Lut(silver), lumvane.Clarity(saturation=20, intensity=70)
raw_lut = library.Create3DLutColorAdjustEffect((silver + "\0").encode("utf-16-le"), 0, 0)
table = {
    "lut": (lambda p, **how: lut(p, 60, **how),
            lambda dst, src, w, h: library.Lut3DColorAdjustEffectProcess(raw_lut, dst, w, h, 0, src, w, h, 0, 60)),
    "clarity": (clarity, lambda dst, src, w, h: library.NLEPureCClarityProcess(
        library.CreateNLEPureCClarity(w, h, 0, 20, 70), dst, w, h, 0, src, w, h, 0)),
    "white balance": (lambda p, **how: lumvane.white_balance(p, temperature=0.2, tint=-0.1, **how),
                      lambda dst, src, w, h: library.WhiteBalanceFun(src, dst, 0, 0, 0, 0.2, -0.1, w, h))}
noise = np.random.default_rng(1).integers(0, 256, (90, 120, 4), dtype=np.uint8)
views = [np.s_[7:8, :50], np.s_[:], np.s_[:, 5:70], np.s_[::2], np.s_[:, ::2], np.s_[::-1], np.s_[:, ::-1],
         np.s_[:, :1], np.s_[:0]]
for name, (effect, raw) in table.items():
    for view in views:
        picture = noise[view]
        packed = picture.copy()
        expected = packed.copy()
        raw(expected.ctypes.data, packed.ctypes.data, *packed.shape[1::-1])
        assert (effect(picture) == expected).all(), (name, view)
        held = noise.copy()
        effect(held[view], out=held[view])
        assert (held[view] == expected).all(), (name, view, "in place")
        held[view] = noise[view]
        assert (held == noise).all(), (name, view, "bytes in between")
        swapped = effect(picture[..., [2, 1, 0, 3]], order="RGBA")
        assert (swapped[..., [2, 1, 0, 3]] == expected).all(), (name, view, "RGBA")
    opaque = np.dstack([noise[..., :3], np.full(noise.shape[:2], 255, np.uint8)])
    assert (effect(noise[..., 2::-1], order="RGB") == effect(opaque)[..., 2::-1]).all(), (name, "RGB")
assert (lut(noise, 0) == noise).all()

hdr = tempfile.TemporaryDirectory()
shutil.copy(silver, f"{hdr.name}/HDR_HLG.cube")
convert = lumvane.HdrToBt709(hdr.name, size=(99, 51))
planes = [noise[:51, :99, 0], noise[:26, :50, 1], noise[::2, ::2, 2][:26, :50]]
packed = [plane.copy() for plane in planes]
expected = [np.empty_like(plane) for plane in packed]
library.VideoAdjustColorProcess(convert._handle, *(p.ctypes.data for p in packed), 99, 50, 50, 0, 0,
                                *(p.ctypes.data for p in expected))
padded = tuple(np.zeros((p.shape[0], 128), np.uint8)[:, :p.shape[1]] for p in packed)
wide = [np.hstack([p, p])[:, :p.shape[1]] for p in packed]
for result in convert(*planes), convert(*packed, out=padded), convert(*wide), convert(*packed, out=tuple(packed)):
    assert all((plane == right).all() for plane, right in zip(result, expected))

clarity.close()
flat, read_only = noise[..., 0], np.broadcast_to(noise, noise.shape)
for error, words, call in [
        (FileNotFoundError, "none.cube", lambda: lumvane.Lut("none.cube")),
        (ValueError, "is not a usable LUT", lambda: lumvane.Lut(__file__)),
        (ValueError, "(90, 120)", lambda: lut(flat)),
        (ValueError, "float32", lambda: lut(noise.astype(np.float32))),
        (ValueError, "writable", lambda: lut(noise, out=read_only)),
        (ValueError, "GBR", lambda: lut(noise[..., :3], order="GBR")),
        (ValueError, "closed", lambda: clarity(noise)),
        (FileNotFoundError, "HDR_PQ.cube", lambda: lumvane.HdrToBt709(hdr.name, "pq", size=(2, 2))),
        (ValueError, "plane v", lambda: convert(planes[0], planes[0], planes[0])),
        (ValueError, "(26, 50)", lambda: convert(*planes, out=(packed[0],) * 3)),
        (ValueError, "already has its HDR LUTs", lambda: [shutil.copytree(hdr.name, f"{hdr.name}/other"),
                                                  lumvane.HdrToBt709(f"{hdr.name}/other", size=(2, 2))])]:
    try:
        call()
    except error as raised:
        assert words in str(raised), raised
    else:
        raise AssertionError(f"no error about {words}")
