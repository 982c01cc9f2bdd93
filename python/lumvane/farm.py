"""Applies the effects to frames on all processors of this machine, or on many machines: python3 -m lumvane.farm --help

Based on Dask distributed. Outputs get their name when they are complete; existing outputs are kept.
"""

from __future__ import annotations

import argparse
import contextlib
import glob
import itertools
import logging
import os
import re
import signal
import sys
import tempfile
import time
import uuid
import warnings
import zlib
from typing import Any, Callable, Dict, Iterable, Iterator, List, NamedTuple, Optional, Tuple

import dask
from dask.system import CPU_COUNT
from distributed import Client, LocalCluster, as_completed

import lumvane
from lumvane import _frames

WINDOW = 4000  # tasks submitted to the scheduler at a time
RANGE_BYTES = 2**25  # of a clip, per task


Pairs = List[Tuple[str, str]]


class UserError(Exception):
    """An error that the user can fix, with the exit code."""

    def __init__(self, text: str, code: int = 2) -> None:
        super().__init__(text)
        self.code = code


class Task(NamedTuple):
    work: Callable[..., List[_frames.Failure]]
    arguments: Tuple[Any, ...]
    steps: int  # frames, for the progress line
    names: List[str]  # of the inputs, to report if the task is lost
    clip: Optional[_frames.Clip] = None


class Progress:
    """A line on standard error, redrawn in place; only on a terminal."""

    def __init__(self, total: int) -> None:
        self.total, self.done, self.start, self.drawn = total, 0, time.monotonic(), 0.0
        self.visible = sys.stderr.isatty()

    def rate(self) -> float:
        return self.done / max(time.monotonic() - self.start, 1e-3)

    def finish(self, steps: int) -> None:
        self.done += steps
        now = time.monotonic()
        if self.visible and (self.done == self.total or now - self.drawn > 0.1):
            self.drawn = now
            bar = "#" * (30 * self.done // max(self.total, 1))
            left = (self.total - self.done) / max(self.rate(), 1e-3)
            status = f"{self.done}/{self.total} frames, {self.rate():.1f} a second, {left:.0f} s left"
            print(f"\r[{bar:30}] {status}   ", end="", file=sys.stderr, flush=True)

    def close(self) -> None:
        if self.visible:
            sys.stderr.write("\n")


def found(pattern: str, kinds: Tuple[str, ...]) -> List[str]:
    """Returns the sorted files of a folder, a glob pattern or a printf pattern, such as shot.%04d.png; or the file."""
    if os.path.isdir(pattern):
        files = [os.path.join(pattern, name) for name in os.listdir(pattern)]
        files = [name for name in files if name.lower().endswith(kinds) and os.path.isfile(name)]
    elif os.path.exists(pattern):
        return [pattern]
    elif re.search(r"%0?\d*d", os.path.basename(pattern)):
        folder, name = os.path.split(pattern)
        before, width, after = re.split(r"%0?(\d*)d", name, maxsplit=1)
        number = re.compile(re.escape(before) + r"\d{%s,}" % (width or 1) + re.escape(after))
        listed = os.listdir(folder or ".") if os.path.isdir(folder or ".") else []
        files = [os.path.join(folder, name) for name in listed if number.fullmatch(name)]
    else:
        files = glob.glob(pattern)
    if not files:
        raise UserError(f"no frames found at '{pattern}'", 3)
    return sorted(files)


def planned(options: argparse.Namespace, kinds: Tuple[str, ...]) -> Pairs:
    """Returns the paths to read and to write, without existing outputs."""
    files = [os.path.abspath(name) for pattern in options.inputs for name in found(pattern, kinds)]
    folder = os.path.abspath(options.output)
    targets = [os.path.join(folder, os.path.basename(name)) for name in files]
    if len(set(targets)) < len(targets):
        raise UserError(f"two frames of the same name would be written to '{options.output}'")
    if {os.path.realpath(name) for name in files} & {os.path.realpath(name) for name in targets}:
        raise UserError(f"frames in '{options.output}' are inputs and would be overwritten")
    try:
        os.makedirs(folder, exist_ok=True)
        done = set() if options.overwrite else set(os.listdir(folder))
    except OSError as error:
        raise UserError(f"cannot write to '{options.output}': {error.strerror}", 4) from None
    todo = [pair for pair in zip(files, targets) if os.path.basename(pair[1]) not in done]
    if len(todo) < len(files):
        print(f"{len(files) - len(todo)} of {len(files)} outputs already exist; --overwrite renders them again",
              flush=True)
    return todo


def contents(paths: Iterable[str]) -> Dict[str, bytes]:
    files = {}
    for path in paths:
        with open(path, "rb") as file:
            files[os.path.basename(path)] = zlib.compress(file.read())
    return files


def picture_tasks(options: argparse.Namespace, pairs: Pairs, run: str, threads: int) -> List[Task]:
    # Several frames per task relieve the scheduler of a large farm; few of them let all workers finish together.
    count = min(max(len(pairs) // (32 * max(threads, 1)), 1), 16)
    batches = [pairs[i:i + count] for i in range(0, len(pairs), count)]
    return [Task(_frames.render_pictures, (batch, run, options.overwrite), len(batch), [pair[0] for pair in batch])
            for batch in batches]


def clip_tasks(options: argparse.Namespace, pairs: Pairs, run: str, failures: List[_frames.Failure]) -> List[Task]:
    tasks = []
    for source, target in pairs:
        try:
            clip = _frames.read_header(source, target, run, options.range)
            with open(clip.part, "wb") as part:
                part.write(clip.header)
                part.truncate(len(clip.header) + clip.frames * clip.step)
        except (OSError, ValueError) as error:
            failures.append((source, _frames.reason(error)))
            continue
        count = max(RANGE_BYTES // clip.step, 1)
        for first in range(0, max(clip.frames, 1), count):
            end = min(first + count, clip.frames)
            tasks.append(Task(_frames.convert_range, (clip, first, end), end - first, [source], clip))
    return tasks


def done_on(client: Client, effect: _frames.Effect, tasks: List[Task]) -> Iterator[Tuple[Task, List[_frames.Failure]]]:
    """Yields the tasks in order of completion, each with its failures."""
    effect_future = client.submit(_frames.identity, effect, pure=False)
    rest = iter(tasks)
    running = {}

    def submitted(count: int) -> List[Any]:
        futures = []
        for task in itertools.islice(rest, count):
            futures.append(client.submit(task.work, effect_future, *task.arguments, pure=False))
            running[futures[-1].key] = task
        return futures

    completed = as_completed(submitted(WINDOW), with_results=True, raise_errors=False)
    for future, result in completed:
        task = running.pop(future.key)
        if future.status != "finished":
            # An error comes as a tuple: the task has killed several workers.
            why = _frames.reason(result[1]) if isinstance(result, tuple) else "the scheduler was lost"
            result = [(name, why) for name in task.names]
        yield task, result
        completed.update(submitted(1))


def finish_clips(tasks: List[Task], failures: List[_frames.Failure]) -> None:
    failed = {source for source, _ in failures}
    for clip in {task.clip for task in tasks if task.clip}:
        if clip.source not in failed:
            os.replace(clip.part, clip.target)


def remove_parts(folder: str, run: str) -> None:
    """Removes the part files that dead workers of this run left behind."""
    for part in glob.glob(os.path.join(glob.escape(folder), f"*.{run}.part")):
        try:
            os.unlink(part)
        except FileNotFoundError:
            pass


@contextlib.contextmanager
def connected(options: argparse.Namespace) -> Iterator[Client]:
    with contextlib.ExitStack() as ends:
        if options.scheduler is None:
            count = options.workers or CPU_COUNT
            # Keeps the workers' scratch files out of the current folder.
            dask.config.set({"temporary-directory": ends.enter_context(tempfile.TemporaryDirectory())})
            address = ends.enter_context(LocalCluster(n_workers=count, threads_per_worker=1, memory_limit=0,
                                                      dashboard_address=None))
        else:
            address = options.scheduler
        try:
            client = ends.enter_context(Client(address, timeout=20))
        except (OSError, ValueError) as error:
            raise UserError(f"cannot reach the scheduler at '{address}': {error}", 1) from None
        if not client.nthreads():
            print("The scheduler has no workers yet; waiting for them", file=sys.stderr)
        client.wait_for_workers(options.workers or 1)
        yield client


def effect_of(options: argparse.Namespace) -> _frames.Effect:
    """Returns the effect, after opening it on this machine so that errors are reported before any work starts."""
    if options.effect == "whitebalance":
        return _frames.Effect("whitebalance", {"temperature": options.temperature, "tint": options.tint}, {})
    if options.effect == "clarity":
        return _frames.Effect("clarity", {"saturation": options.saturation, "intensity": options.intensity}, {})
    try:
        if options.effect == "lut":
            lumvane.Lut(options.lut).close()
            return _frames.Effect("lut", {"strength": options.strength}, contents([options.lut]))
        lumvane.HdrToBt709(options.luts, options.transfer, size=(1, 1)).close()
        luts = [os.path.join(options.luts, f"HDR_{name}.cube") for name in ("HLG", "PQ")]
        # Both, if both exist: a worker process reads them only once, for all later tasks.
        return _frames.Effect("hdr", {"transfer": options.transfer}, contents(filter(os.path.exists, luts)))
    except OSError as error:
        raise UserError(f"cannot use LUT file '{error.filename}': {error.strerror}", 3) from None
    except ValueError as error:
        raise UserError(str(error), 3) from None


def render(options: argparse.Namespace) -> int:
    hdr = options.effect == "hdr"
    effect = effect_of(options)
    pairs = planned(options, (".y4m",) if hdr else _frames.KINDS)
    if not pairs:
        return 0
    run = uuid.uuid4().hex[:12]
    failures: List[_frames.Failure] = []
    try:
        with connected(options) as client:
            tasks = (clip_tasks(options, pairs, run, failures) if hdr else
                     picture_tasks(options, pairs, run, sum(client.nthreads().values())))
            progress = Progress(sum(task.steps for task in tasks))
            try:
                for task, failed in done_on(client, effect, tasks):
                    failures += failed
                    progress.finish(task.steps)
            finally:
                progress.close()
            finish_clips(tasks, failures)
            print(f"{progress.done} frames, {progress.rate():.1f} a second", flush=True)
    finally:
        remove_parts(options.output, run)
    if failures:
        lines = [f"  {name}: {why}" for name, why in sorted(failures)]
        print(f"{len(failures)} failed:", *lines, sep="\n", file=sys.stderr)
    return 3 if failures else 0


def parsed(arguments: Optional[List[str]]) -> argparse.Namespace:
    common = argparse.ArgumentParser(add_help=False)
    common.add_argument("inputs", nargs="+", help="a folder, a file, or a pattern: 'shot.*.png' or shot.%%04d.png")
    common.add_argument("output", help="folder to write to; frames keep their names")
    common.add_argument("--scheduler", metavar="ADDRESS", help="address of a Dask scheduler, such as tcp://host:8786")
    common.add_argument("--workers", type=int, metavar="N",
                        help="workers to start here, by default one per processor; or to wait for at the scheduler")
    common.add_argument("--overwrite", action="store_true", help="render existing outputs again")
    parser = argparse.ArgumentParser(
        prog="lumvane.farm", description="Applies an effect to frames, on this machine or on many.",
        epilog="Exit codes: 0 done, 2 wrong arguments, 3 an input that cannot be used or a frame that failed, "
               "4 an output folder that cannot be written to, 1 anything else.")
    effects = parser.add_subparsers(dest="effect", required=True, metavar="EFFECT")
    lut = effects.add_parser("lut", parents=[common], help="grade pictures through a 3D LUT")
    lut.add_argument("--lut", required=True, metavar="FILE", help=".cube or .3dl")
    lut.add_argument("--strength", type=int, default=100, help="percent, 0 to 100")
    clarity = effects.add_parser("clarity", parents=[common], help="raise the local contrast of pictures")
    clarity.add_argument("--intensity", type=int, default=100, help="percent, 0 to 100")
    clarity.add_argument("--saturation", type=int, default=0, help="percent, -100 to 100")
    warm = effects.add_parser("whitebalance", parents=[common], help="shift the white balance of pictures")
    warm.add_argument("--temperature", type=float, default=0.0, help="from cold, -1, to warm, 1")
    warm.add_argument("--tint", type=float, default=0.0, help="from green, -1, to magenta, 1")
    hdr = effects.add_parser("hdr", parents=[common], help="convert HDR clips, .y4m, to BT.709")
    hdr.add_argument("--luts", required=True, metavar="FOLDER", help="with HDR_HLG.cube and HDR_PQ.cube")
    hdr.add_argument("--transfer", required=True, choices=("hlg", "pq"))
    hdr.add_argument("--range", choices=("limited", "full"), help="default: as the clip is tagged, or limited")
    return parser.parse_args(arguments)


def main(arguments: Optional[List[str]] = None) -> int:
    options = parsed(arguments)
    warnings.filterwarnings("ignore", "Large object", UserWarning)  # the LUT, sent once
    logging.getLogger("distributed.client").setLevel(logging.CRITICAL)  # lost frames are reported by name
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    try:
        return render(options)
    except UserError as error:
        print(f"lumvane.farm: {error}", file=sys.stderr)
        return error.code
    except KeyboardInterrupt:
        return 130


if __name__ == "__main__":
    sys.exit(main())
