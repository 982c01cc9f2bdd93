"""Per-frame colour effects on NumPy pictures: LUT grading, clarity, white balance, HDR video to BT.709.

A picture is a uint8 array of shape (height, width, channels). `order` names its channels, "BGRA" by default, or "RGBA",
"BGR" or "RGB"; pictures without alpha are treated as opaque. The result is a new array, or `out` if given, which has
the same shape and may be the picture itself. BGRA pictures, including those with padded rows, are read and written in
place; all others are copied, with the same result.

The bytes are those of the library, the same on every processor and with any number of threads. Calls release the GIL.
An effect may be called from several threads, but serves one at a time: to run in parallel, give each thread its own
effect.
"""

from __future__ import annotations

import ctypes
import functools
import operator
import os
import sys
import threading
import weakref
from pathlib import Path
from typing import Any, Callable, Optional, Sequence, Tuple, TypeVar, Union

import numpy as np
import numpy.typing as npt

__all__ = ["Clarity", "HdrToBt709", "Lut", "white_balance"]

Picture = npt.NDArray[np.uint8]
Planes = Tuple[Picture, Picture, Picture]
_Path = Union[str, "os.PathLike[str]"]
_Self = TypeVar("_Self", bound="_Effect")
_LARGEST = 2**31 - 1  # limit of the library's sizes and strides


@functools.lru_cache(maxsize=None)
def _library() -> ctypes.CDLL:
    """Loads the library named by LUMVANE_LIBRARY, or the one beside this file, or the system's."""
    name = {"win32": "lumvane.dll", "darwin": "liblumvane.0.dylib"}.get(sys.platform, "liblumvane.so.0")
    beside = Path(__file__).with_name(name)
    place = os.environ.get("LUMVANE_LIBRARY") or (str(beside) if beside.exists() else name)
    try:
        library = ctypes.CDLL(place)
    except OSError as error:
        raise ImportError(f"cannot load the library ({error}): install it, or set LUMVANE_LIBRARY") from None
    handle, address, integer, number = ctypes.c_void_p, ctypes.c_void_p, ctypes.c_int32, ctypes.c_float
    target, source = [address, integer, integer, integer], [address, integer, integer, integer]
    for function, result, arguments in (
        ("Create3DLutColorAdjustEffect", handle, [address, integer, integer]),
        ("Lut3DColorAdjustEffectProcess", None, [handle, *target, *source, integer]),
        ("Destory3DLutColorAdjustEffect", None, [handle]),
        ("CreateNLEPureCClarity", handle, [integer] * 5),
        ("NLEPureCClarityProcess", integer, [handle, *target, *source]),
        ("DestoryNLEPureCClarity", None, [handle]),
        ("WhiteBalanceFun", ctypes.c_bool, [address] * 2 + [number] * 5 + [integer] * 2),
        ("CreateVideoAdjustColor", handle, [address] + [integer] * 5),
        ("VideoAdjustColorProcess", ctypes.c_bool, [handle] + [address] * 3 + [integer] * 5 + [address] * 3),
        ("DestroyVideoAdjustColor", None, [handle]),
    ):
        entry = getattr(library, function)
        entry.restype, entry.argtypes = result, arguments
    return library


def _utf16(path: str) -> bytes:
    """Returns the path as the library expects it, with a two-byte terminator."""
    try:
        return path.encode("utf-16-le") + b"\0\0"
    except UnicodeEncodeError:
        raise ValueError(f"{os.fsencode(path)!r}: its name is not valid UTF-8") from None


def _clamped(percent: int, least: int) -> int:
    return min(max(operator.index(percent), least), 100)


def _stride(picture: Picture) -> int:
    """Returns the bytes from one BGRA row to the next; 0 if pixels are not contiguous, or rows overlap."""
    row = 4 * picture.shape[1]
    if picture.strides[1:] != (4, 1):
        return 0
    stride = picture.strides[0] if picture.shape[0] > 1 else row
    return stride if row <= abs(stride) <= _LARGEST else 0


def _render(picture: Picture, out: Optional[Picture], order: str, accepts: Callable[[int, int], bool],
            call: Callable[[Picture, Picture], None]) -> Picture:
    """Applies `call(target, source)`, whose arguments are BGRA and do not overlap, to a picture. `accepts(stride, row)`
    says whether the effect can process rows of this stride and size in bytes."""
    if order not in ("BGRA", "RGBA", "BGR", "RGB"):
        raise ValueError(f"the order of channels must be BGRA, RGBA, BGR or RGB, not {order!r}")
    picture = np.asarray(picture)
    if picture.dtype != np.uint8 or picture.ndim != 3 or picture.shape[2] != len(order):
        raise ValueError(f"a picture in {order} must be uint8 of shape (height, width, {len(order)}), "
                         f"not {picture.dtype} of shape {picture.shape}")
    if max(picture.shape[0], 4 * picture.shape[1]) > _LARGEST:
        raise ValueError(f"a picture of shape {picture.shape} is too large")
    result = np.empty(picture.shape, np.uint8) if out is None else _writable(out, picture.shape)
    if picture.size == 0:
        return result

    def direct(array: Picture) -> bool:
        return order == "BGRA" and accepts(_stride(array), 4 * array.shape[1])

    source = picture
    if order != "BGRA":
        source = np.full((*picture.shape[:2], 4), 255, np.uint8)
        for channel, name in enumerate(order):
            source[..., "BGRA".index(name)] = picture[..., channel]
    elif not direct(picture) or np.may_share_memory(picture, result):
        source = picture.copy()
    target = result if direct(result) else np.empty(source.shape, np.uint8)
    call(target, source)
    if target is not result:
        for channel, name in enumerate(order):
            result[..., channel] = target[..., "BGRA".index(name)]
    return result


def _writable(out: Picture, shape: Tuple[int, ...]) -> Picture:
    if not isinstance(out, np.ndarray) or out.dtype != np.uint8 or out.shape != shape or not out.flags.writeable:
        found = f"{out.dtype} of shape {out.shape}" if isinstance(out, np.ndarray) else type(out).__name__
        raise ValueError(f"out must be a writable array, uint8 of shape {shape}, not {found}")
    return out


def _frame(picture: Picture) -> Tuple[int, int, int, int]:
    return picture.ctypes.data, picture.shape[1], picture.shape[0], _stride(picture)


class _Effect:
    """An effect with a library handle, which `close`, a `with` statement or the finalizer destroys."""

    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._handle: Optional[int] = None
        self._end: Callable[[], Any] = lambda: None
        self._closed = False

    def _hold(self, handle: Optional[int], destroy: Callable[[int], None]) -> None:
        self._end()
        self._handle = handle
        if handle:
            self._end = weakref.finalize(self, destroy, handle)

    def _require_open(self) -> None:
        if self._closed:
            raise ValueError("the effect is closed")

    def close(self) -> None:
        """Frees the effect's memory. It cannot be called afterwards."""
        with self._lock:
            self._closed = True
            self._end()

    def __enter__(self: _Self) -> _Self:
        return self

    def __exit__(self, *error: object) -> None:
        self.close()


class Lut(_Effect):
    """Grades pictures through a 3D LUT, a `.cube` file of 2 to 65 points per axis or a `.3dl` file of 3 to 65.

    Raises FileNotFoundError if the file does not exist, ValueError if it has no such table. The file is read once."""

    def __init__(self, path: _Path) -> None:
        super().__init__()
        name = os.fsdecode(path)
        with open(name, "rb") as file:
            for line in file:  # LUT_1D_SIZE comes before the first row
                if line.startswith(b"LUT_1D_SIZE"):
                    raise ValueError(f"'{name}' contains a one-dimensional table; only 3D tables are supported")
                if line[:1].isdigit():
                    break
        library = _library()
        handle = library.Create3DLutColorAdjustEffect(_utf16(name), 0, 0)
        if not handle:
            raise ValueError(f"'{name}' is not a usable LUT: a complete .cube file of 2 to 65 points per axis or .3dl "
                             "file of 3 to 65, by its extension")
        self._hold(handle, library.Destory3DLutColorAdjustEffect)

    def __call__(self, picture: Picture, strength: int = 100, *, order: str = "BGRA",
                 out: Optional[Picture] = None) -> Picture:
        """Returns the graded picture. `strength` is in percent, 0 (no change) to 100. Colours are looked up as they are
        and the result is multiplied by alpha; alpha is kept. Bottom-up pictures (`picture[::-1]`) need no copy."""
        percent = _clamped(strength, 0)

        def call(target: Picture, source: Picture) -> None:
            if percent == 0:  # the library does not write the target
                target[...] = source
            _library().Lut3DColorAdjustEffectProcess(self._handle, *_frame(target), *_frame(source), percent)

        with self._lock:
            self._require_open()
            return _render(picture, out, order, lambda stride, row: stride != 0, call)


class Clarity(_Effect):
    """Raises local contrast by `intensity` percent, 0 to 100, and changes saturation by `saturation` percent, -100 to
    100 (a factor of 0.85 to 1.15). Other values are clamped."""

    def __init__(self, *, saturation: int = 0, intensity: int = 0) -> None:
        super().__init__()
        self._settings = _clamped(saturation, -100), _clamped(intensity, 0)
        self._shape: Optional[Tuple[int, ...]] = None

    def __call__(self, picture: Picture, *, order: str = "BGRA", out: Optional[Picture] = None) -> Picture:
        """Returns the edited picture; alpha is kept. Keeps buffers for one picture size, about 3 bytes per pixel."""

        def call(target: Picture, source: Picture) -> None:
            library = _library()
            height, width = source.shape[:2]
            if self._shape != (height, width):  # the size determines the scale of the details that are raised
                self._hold(library.CreateNLEPureCClarity(width, height, 0, *self._settings),
                           library.DestoryNLEPureCClarity)
                self._shape = height, width
            if not library.NLEPureCClarityProcess(self._handle, *_frame(target), *_frame(source)):
                raise RuntimeError(f"the clarity effect refused a picture of {width} x {height}")

        with self._lock:
            self._require_open()
            return _render(picture, out, order, lambda stride, row: stride > 0, call)


def white_balance(picture: Picture, *, temperature: float = 0.0, tint: float = 0.0, order: str = "BGRA",
                  out: Optional[Picture] = None) -> Picture:
    """Returns the picture with colours shifted from cold, `temperature` -1, to warm, 1, and from green, `tint` -1, to
    magenta, 1; 0 changes nothing, any value is accepted, alpha is kept. Pictures with padded rows are copied."""

    def call(target: Picture, source: Picture) -> None:
        height, width = source.shape[:2]
        _library().WhiteBalanceFun(source.ctypes.data, target.ctypes.data, 0, 0, 0, temperature, tint, width, height)

    return _render(picture, out, order, lambda stride, row: stride == row, call)


_hdr_folder: Optional[str] = None
_hdr_lock = threading.Lock()


class HdrToBt709(_Effect):
    """Converts 8-bit 4:2:0 video frames from BT.2020 with the transfer "hlg" or "pq" to BT.709.

    `directory` holds HDR_HLG.cube and HDR_PQ.cube, `size` is (width, height). With `limited_range` Y ranges from 16 to
    235, in and out, otherwise from 0 to 255. The library reads the two files once per process. Raises FileNotFoundError
    if one is missing, ValueError if one cannot be used, or if `directory` is not the first one used."""

    def __init__(self, directory: _Path, transfer: str = "hlg", limited_range: bool = True, *,
                 size: Tuple[int, int]) -> None:
        super().__init__()
        if transfer not in ("hlg", "pq"):
            raise ValueError(f'the transfer must be "hlg" or "pq", not {transfer!r}')
        width, height = map(operator.index, size)
        if width < 1 or height < 1 or 4 * width * height > _LARGEST:
            raise ValueError(f"frames of {width} x {height} are not supported: 1 to 2^29 - 1 pixels")
        folder = os.path.abspath(os.fsdecode(directory))
        lut = os.path.join(folder, f"HDR_{transfer.upper()}.cube")
        open(lut, "rb").close()
        library = _library()

        def create(width: int, height: int) -> None:
            handle = library.CreateVideoAdjustColor(_utf16(folder), 0, limited_range, transfer == "pq", width, height)
            self._hold(handle, library.DestroyVideoAdjustColor)

        global _hdr_folder
        with _hdr_lock:
            if _hdr_folder not in (None, os.path.realpath(folder)):
                raise ValueError(f"'{lut}': this process already has its HDR LUTs from '{_hdr_folder}'")
            create(1, 1)
            _hdr_folder = os.path.realpath(folder)
        # If a file cannot be used, every output frame is black.
        self._shapes: Sequence[Tuple[int, int]] = ((1, 1),) * 3
        neutral = np.full((1, 1), 128, np.uint8)
        black = 16 if limited_range else 0
        if all(self(np.full((1, 1), grey, np.uint8), neutral, neutral)[0] <= black for grey in (128, 192, 255)):
            raise ValueError(f"'{lut}' is not a LUT of 2 to 65 points per axis, or maps everything to black")
        create(width, height)
        chroma = (height + 1) // 2, (width + 1) // 2
        self._shapes = (height, width), chroma, chroma

    def __call__(self, y: Picture, v: Picture, u: Picture, *, out: Optional[Planes] = None) -> Planes:
        """Returns the planes Y, V (Cr) and U (Cb) of the converted frame; YUV formats have U before V. Inputs are uint8
        (height, width) and twice ((height + 1) // 2, (width + 1) // 2), chroma sited left. Rows may be padded, without
        a copy if those of `out` have the same stride."""
        planes = []
        targets = (None, None, None) if out is None else out
        for name, plane, target, shape in zip("yvu", (y, v, u), targets, self._shapes):
            plane = np.asarray(plane)
            if plane.dtype != np.uint8 or plane.shape != shape:
                raise ValueError(f"plane {name} must be uint8 of shape {shape}, "
                                 f"not {plane.dtype} of shape {plane.shape}")
            if plane.strides[1] != 1 or not shape[1] <= plane.strides[0] <= _LARGEST:
                plane = plane.copy()
            if target is None:  # source and target share a stride
                target = np.empty((shape[0], plane.strides[0]), np.uint8)[:, :shape[1]]
            planes.append((plane, _writable(target, shape)))
        result = planes[0][1], planes[1][1], planes[2][1]
        for i, (plane, target) in enumerate(planes):
            if plane.strides != target.strides or any(np.may_share_memory(plane, other) for other in result):
                planes[i] = plane.copy(), np.empty(plane.shape, np.uint8)
        sources, written = zip(*planes)
        with self._lock:
            self._require_open()
            _library().VideoAdjustColorProcess(
                self._handle, *(plane.ctypes.data for plane in sources), *(plane.strides[0] for plane in sources), 0, 0,
                *(plane.ctypes.data for plane in written))
        for whole, plane in zip(result, written):
            if whole is not plane:
                whole[...] = plane
        return result
