"""The work of a farm worker: renders picture files, and ranges of clips."""

from __future__ import annotations

import os
import tempfile
import threading
import uuid
import zlib
from dataclasses import dataclass, field
from typing import Any, Callable, Dict, List, NamedTuple, Optional, Tuple

import cv2
import numpy as np

import lumvane

# Frames in parallel use all processors; parallel rows within a frame would only compete with them.
cv2.setNumThreads(1)

KINDS = (".png", ".jpg", ".jpeg", ".tif", ".tiff", ".webp", ".bmp")
WITH_ALPHA = (".png", ".webp", ".tif", ".tiff")


@dataclass(frozen=True)
class Effect:
    """An effect with its options and LUTs, as compressed contents so that workers need no access to the files."""

    name: str
    options: Dict[str, Any]
    files: Dict[str, bytes]
    key: str = field(default_factory=lambda: uuid.uuid4().hex)


def identity(effect: Effect) -> Effect:
    """Returns the effect. Run as a task so that workers that join late, or lose the effect, can get it again."""
    return effect


def write_files(effect: Effect, folder: str) -> None:
    for name, contents in effect.files.items():
        with open(os.path.join(folder, name), "wb") as file:
            file.write(zlib.decompress(contents))


Edit = Callable[[lumvane.Picture], lumvane.Picture]


def picture_edit(effect: Effect) -> Edit:
    """Opens the effect and returns a function from BGRA to BGRA. Raises if the effect cannot be opened."""
    if effect.name == "whitebalance":
        return lambda picture: lumvane.white_balance(picture, **effect.options)
    if effect.name == "clarity":
        return lumvane.Clarity(**effect.options)
    with tempfile.TemporaryDirectory() as folder:
        write_files(effect, folder)
        lut = lumvane.Lut(os.path.join(folder, *effect.files))

    # Picture files store straight alpha: so pictures are graded as opaque.
    def grade(picture: lumvane.Picture) -> lumvane.Picture:
        opaque = picture.copy()
        opaque[..., 3] = 255
        graded = lut(opaque, **effect.options)
        graded[..., 3] = picture[..., 3]
        return graded

    return grade


def is_cut_off_jpeg(data: bytes) -> bool:
    """Returns whether a JPEG file is truncated, which OpenCV does not report: no end marker follows the header. That is
    segments (ITU-T T.81, annex B) of a marker and a length that includes itself, up to the image data, marker 0xda."""
    if data[:3] != b"\xff\xd8\xff":
        return False
    at = 2
    while at + 3 < len(data) and data[at + 1] != 0xDA:
        at += 1 if data[at + 1] == 0xFF else 2 + int.from_bytes(data[at + 2:at + 4], "big")
    return data.find(b"\xff\xd9", at) < 0


def read_picture(path: str) -> lumvane.Picture:
    """Returns 8-bit BGRA, upright."""
    with open(path, "rb") as file:
        data = file.read()
    coded = np.frombuffer(data, np.uint8)
    if is_cut_off_jpeg(data):
        raise ValueError("it is cut off: the file ends before the picture does")
    # Only IMREAD_COLOR applies the EXIF orientation; only IMREAD_UNCHANGED keeps alpha. Decoding is half of the work,
    # and most headers show that there is no alpha: those pictures are decoded only once.
    jpeg, png = data[:2] == b"\xff\xd8", data[:4] == b"\x89PNG"
    opaque = jpeg or png and data[25:26] in b"\0\2" and b"tRNS" not in data[:data.find(b"IDAT")]
    picture = None
    if data and not opaque:
        picture = cv2.imdecode(coded, cv2.IMREAD_UNCHANGED)
    if opaque or picture is not None and (picture.ndim < 3 or picture.shape[2] != 4):
        picture = cv2.imdecode(coded, cv2.IMREAD_COLOR)
    if picture is None:
        raise ValueError("it is damaged, or its format is not supported")
    if picture.dtype == np.uint16:
        picture = ((picture.astype(np.uint32) + 128) // 257).astype(np.uint8)
    if picture.dtype != np.uint8:
        raise ValueError("its pixels have neither 8 nor 16 bits")
    bgra: lumvane.Picture = picture if picture.shape[2] == 4 else cv2.cvtColor(picture, cv2.COLOR_BGR2BGRA)
    return bgra


def write_picture(path: str, picture: lumvane.Picture, run: str) -> None:
    """Writes a picture, with alpha if it has any and the format supports it. Until the file is complete, its name ends
    in `.RUN.part` and is unique to each attempt: a worker given up as lost may still be writing."""
    extension = os.path.splitext(path)[1].lower()
    if (picture[..., 3] == 255).all():
        picture = cv2.cvtColor(picture, cv2.COLOR_BGRA2BGR)
    elif extension not in WITH_ALPHA:  # over white, like lumvane-host
        alpha = picture[..., 3:].astype(np.uint16)
        picture = ((picture[..., :3] * alpha + 255 * (255 - alpha) + 127) // 255).astype(np.uint8)
    written, coded = cv2.imencode(extension, picture, [cv2.IMWRITE_JPEG_QUALITY, 95])
    if not written:
        raise ValueError(f"{extension} cannot hold {picture.shape[1]} x {picture.shape[0]} pixels")
    part = f"{path}.{uuid.uuid4().hex[:8]}.{run}.part"
    try:
        with open(part, "xb") as file:
            file.write(coded)
        os.replace(part, path)
    except BaseException:
        if os.path.exists(part):
            os.unlink(part)
        raise


_opened = threading.local()  # an effect serves one thread at a time


def opened(key: Any, make: Callable[[], Any]) -> Any:
    """Returns the result of `make`, cached per thread for the last key."""
    if getattr(_opened, "key", None) != key:
        _opened.key, _opened.value = None, None
        _opened.value = make()
        _opened.key = key
    return _opened.value


def reason(error: Exception) -> str:
    return str(getattr(error, "strerror", "") or getattr(error, "err", "") or error) or type(error).__name__


Failure = Tuple[str, str]


def render_pictures(effect: Effect, pictures: List[Tuple[str, str]], run: str, overwrite: bool) -> List[Failure]:
    """Renders (source, target) pairs of paths. Returns the names of those that failed, and why."""
    failures = []
    for source, target in pictures:
        try:
            if overwrite or not os.path.exists(target):  # a worker that died may have rendered some
                edit = opened(effect.key, lambda: picture_edit(effect))
                write_picture(target, edit(read_picture(source)), run)
        except Exception as error:  # of any kind: the other frames continue
            failures.append((source, reason(error)))
    return failures


class Clip(NamedTuple):
    """An 8-bit 4:2:0 YUV4MPEG2 file and its output."""

    source: str
    part: str  # temporary file, renamed to the target when complete
    target: str
    width: int
    height: int
    limited: bool
    header: bytes  # of the target
    start: int  # offset of the first frame in the source
    frames: int

    @property
    def chroma(self) -> Tuple[int, int]:
        return (self.height + 1) // 2, (self.width + 1) // 2

    @property
    def step(self) -> int:
        """Bytes of a frame including its header line."""
        return 6 + self.width * self.height + 2 * self.chroma[0] * self.chroma[1]


def read_header(source: str, target: str, run: str, video_range: Optional[str]) -> Clip:
    """Reads the header of a clip."""
    with open(source, "rb") as file:
        line = file.readline(4096)
        size = file.seek(0, os.SEEK_END)
    words = line.decode("latin-1").split()
    if words[:1] != ["YUV4MPEG2"] or not line.endswith(b"\n"):
        raise ValueError("it is not a YUV4MPEG2 stream")
    tags = {word[0]: word[1:] for word in words[1:] if word[0] != "X"}
    if tags.get("I", "p") not in ("p", "?"):
        raise ValueError("it is interlaced; only progressive video is accepted")
    if tags.get("C", "420") not in ("420", "420jpeg", "420mpeg2", "420paldv"):
        raise ValueError(f"its pixel format is C{tags['C']}; only 8-bit 4:2:0 is accepted")
    width, height = (int(tags[tag]) if tags.get(tag, "").isdigit() else 0 for tag in "WH")
    if not 0 < width * height <= 2**28:  # 16K frames; more means a damaged header
        raise ValueError(f"it has no usable size: 1 to {2**28} pixels are accepted")
    limited = (video_range or ("full" if "XCOLORRANGE=FULL" in words else "limited")) == "limited"
    header = (f"YUV4MPEG2 W{width} H{height} F{tags.get('F', '25:1')} Ip A{tags.get('A', '0:0')} "
              f"C420mpeg2 XYSCSS=420MPEG2 XCOLORRANGE={'LIMITED' if limited else 'FULL'}\n")
    clip = Clip(source, f"{target}.{run}.part", target, width, height, limited, header.encode("latin-1"), len(line), 0)
    frames, rest = divmod(size - len(line), clip.step)
    if rest:
        raise ValueError("it ends within a frame, or its frames have their own parameters")
    return clip._replace(frames=frames)


_folders: Dict[str, "tempfile.TemporaryDirectory[str]"] = {}  # HDR LUT folders by contents, until the process ends
_folders_lock = threading.Lock()


def hdr_folder(effect: Effect) -> str:
    key = repr(sorted((name, zlib.crc32(contents), len(contents)) for name, contents in effect.files.items()))
    with _folders_lock:
        if key not in _folders:
            folder = tempfile.TemporaryDirectory()
            write_files(effect, folder.name)
            _folders[key] = folder
        return _folders[key].name


def open_hdr(effect: Effect, limited: bool, size: Tuple[int, int]) -> lumvane.HdrToBt709:
    return lumvane.HdrToBt709(hdr_folder(effect), effect.options["transfer"], limited, size=size)


def convert_range(effect: Effect, clip: Clip, first: int, end: int) -> List[Failure]:
    """Converts the frames from `first` to `end` - 1 into their places in the part file. Repeating a range writes the
    same bytes, so a worker given up as lost does no harm."""
    try:
        convert = opened((effect.key, clip.limited, clip.width, clip.height),
                         lambda: open_hdr(effect, clip.limited, (clip.width, clip.height)))
        luma = clip.width * clip.height
        cuts = [6, 6 + luma, 6 + luma + (clip.step - 6 - luma) // 2, clip.step]
        shapes = [(clip.height, clip.width), clip.chroma, clip.chroma]
        # Write-only: on shared storage, cached pages written back must not overwrite the ranges of other machines.
        descriptor = os.open(clip.part, os.O_WRONLY)
        with open(descriptor, "wb") as target, open(clip.source, "rb") as source:
            source.seek(clip.start + first * clip.step)
            target.seek(len(clip.header) + first * clip.step)
            for number in range(first, end):
                frame = np.frombuffer(source.read(clip.step), np.uint8)
                if frame.size != clip.step or frame[:6].tobytes() != b"FRAME\n":
                    raise ValueError(f"frame {number} does not begin where it should")
                result = frame.copy()
                (y, u, v), (to_y, to_u, to_v) = (
                    [data[begin:stop].reshape(shape) for begin, stop, shape in zip(cuts, cuts[1:], shapes)]
                    for data in (frame, result))
                convert(y, v, u, out=(to_y, to_v, to_u))
                target.write(result.tobytes())
            target.flush()
            os.fsync(target.fileno())  # a range reported as done must be visible to others
    except Exception as error:  # of any kind: the other clips continue
        return [(clip.source, f"frames {first} to {end - 1}: {reason(error)}")]
    return []
