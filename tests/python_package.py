#!/usr/bin/env python3
"""Compares the package with the library for all kinds of arrays, runs the code of its page and the example, and reads
and writes files as farm workers do: python_package.py PYTHON LIBRARY SAMPLES"""

import os
import re
import runpy
import shutil
import sys
import tempfile
from pathlib import Path

try:
    import cv2
    import numpy as np
except ImportError as error:
    print(f"skipped: {error}; python3-opencv is needed")
    sys.exit(77)

folder, os.environ["LUMVANE_LIBRARY"], samples = map(os.path.abspath, sys.argv[1:])
scratch = tempfile.TemporaryDirectory()
os.chdir(scratch.name)
sys.path.insert(0, folder)
sys.dont_write_bytecode = True
import lumvane  # noqa: E402

library = lumvane._library()
silver = f"{samples}/silver.cube"
lut, clarity = lumvane.Lut(silver), lumvane.Clarity(saturation=-20, intensity=70)
raw_lut = library.Create3DLutColorAdjustEffect((silver + "\0").encode("utf-16-le"), 0, 0)
table = {
    "lut": (lambda p, **how: lut(p, 60, **how),
            lambda dst, src, w, h: library.Lut3DColorAdjustEffectProcess(raw_lut, dst, w, h, 0, src, w, h, 0, 60)),
    "clarity": (clarity, lambda dst, src, w, h: library.NLEPureCClarityProcess(
        library.CreateNLEPureCClarity(w, h, 0, -20, 70), dst, w, h, 0, src, w, h, 0)),
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

os.mkdir("luts")
shutil.copy(silver, "luts/HDR_HLG.cube")
shutil.copy(f"{samples}/teal_orange.cube", "luts/HDR_PQ.cube")
planes = [noise[:51, :99, 0], noise[:26, :50, 1], noise[::2, ::2, 2][:26, :50]]
packed = [plane.copy() for plane in planes]
wide = [np.hstack([p, p])[:, :p.shape[1]] for p in packed]
for transfer, limited in ("hlg", True), ("pq", False):
    convert = lumvane.HdrToBt709("luts", transfer, limited, size=(99, 51))
    raw_hdr = library.CreateVideoAdjustColor("luts\0".encode("utf-16-le"), 0, limited, transfer == "pq", 99, 51)
    expected = [np.empty_like(plane) for plane in packed]
    library.VideoAdjustColorProcess(raw_hdr, *(p.ctypes.data for p in packed), 99, 50, 50, 0, 0,
                                    *(p.ctypes.data for p in expected))
    padded = tuple(np.zeros((p.shape[0], 128), np.uint8)[:, :p.shape[1]] for p in packed)
    held = tuple(plane.copy() for plane in packed)
    for result in convert(*planes), convert(*packed, out=padded), convert(*wide), convert(*held, out=held):
        assert all((plane == right).all() for plane, right in zip(result, expected)), transfer

shutil.copy(silver, "look.cube")
cv2.imwrite("photo.jpg", noise[..., :3])
photo = cv2.imread("photo.jpg")
page = {name: np.full(size, 128, np.uint8) for name, size in zip("yvu", [(1080, 1920), (540, 960), (540, 960)])}
for code in re.findall("```python\n(.*?)```", Path(folder, "README.md").read_text(), re.DOTALL):
    exec(code, page)
assert page["y"].shape == (1080, 1920) and (page["clear"] != page["warm"]).any()
sys.argv = ["grade.py", "look.cube", "photo.jpg", "graded.png", "60"]
runpy.run_path(f"{folder}/../examples/grade.py")
opaque = np.dstack([photo, np.full(photo.shape[:2], 255, np.uint8)])
for graded in page["graded"], cv2.imread("graded.png"):
    assert (graded == lut(opaque, 60)[..., :3]).all()

from lumvane import _frames  # noqa: E402  after all else, as it limits OpenCV to one thread

jpeg = b"\xff\xd8\xff\xff\xe1\0\4\xff\xd9" + Path("photo.jpg").read_bytes()[2:]  # a fill byte, a thumbnail's end
Path("thumbnail.jpg").write_bytes(jpeg)
Path("cut.jpg").write_bytes(jpeg[:-2])
cv2.imwrite("16.png", np.uint16([[[127, 129, 65280, 32896]]]))
cv2.imwrite("grey.tif", np.uint8([[9]]))
_frames.write_picture("white.jpg", np.zeros((1, 1, 4), np.uint8), "run")
for name, expected in [("thumbnail.jpg", opaque), ("16.png", [[[0, 1, 254, 128]]]), ("grey.tif", [[[9, 9, 9, 255]]]),
                       ("white.jpg", [[[255] * 4]])]:
    assert (_frames.read_picture(name) == expected).all(), name
Path("clip.y4m").write_text("YUV4MPEG2 W2 H2\n")
for wanted, tag in (None, b"=LIMITED\n"), ("full", b"=FULL\n"):
    clip = _frames.read_header("clip.y4m", "", "run", wanted)
    assert clip.header.endswith(tag) and clip.limited == (wanted is None)

Path("curve.cube").write_text("LUT_1D_SIZE 2\nLUT_3D_SIZE 2\n" + "0 0 0\n" * 8)  # the library would load it
clarity.close()
flat, read_only = noise[..., 0], np.broadcast_to(noise, noise.shape)
for error, words, call in [
        (FileNotFoundError, "none.cube", lambda: lumvane.Lut("none.cube")),
        (ValueError, "is not a usable LUT", lambda: lumvane.Lut(__file__)),
        (ValueError, "one-dimensional", lambda: lumvane.Lut("curve.cube")),
        (ValueError, "(90, 120)", lambda: lut(flat)),
        (ValueError, "float32", lambda: lut(noise.astype(np.float32))),
        (ValueError, "writable", lambda: lut(noise, out=read_only)),
        (ValueError, "GBR", lambda: lut(noise[..., :3], order="GBR")),
        (ValueError, "closed", lambda: clarity(noise)),
        (FileNotFoundError, "HDR_PQ.cube", lambda: lumvane.HdrToBt709("none", "pq", size=(2, 2))),
        (ValueError, "plane v", lambda: convert(planes[0], planes[0], planes[0])),
        (ValueError, "(26, 50)", lambda: convert(*planes, out=(packed[0],) * 3)),
        (ValueError, "already has its HDR LUTs", lambda: [shutil.copytree("luts", "other"),
                                                  lumvane.HdrToBt709("other", size=(2, 2))]),
        (ValueError, "cut off", lambda: _frames.read_picture("cut.jpg"))]:
    try:
        call()
    except error as raised:
        assert words in str(raised), raised
    else:
        raise AssertionError(f"no error about {words}")
