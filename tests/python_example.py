#!/usr/bin/env python3
"""examples/grade.py on pictures of every shape: python_example.py EXAMPLES LIBLUMVANE.SO SAMPLES"""

import ctypes
import sys

try:
    import numpy as np
except ImportError:
    print("skipped: there is no NumPy")
    sys.exit(77)

examples, library, samples = sys.argv[1:]
sys.path.insert(0, examples)
sys.dont_write_bytecode = True
from grade import grade  # noqa: E402

library = ctypes.CDLL(library)
silver = f"{samples}/silver.cube"
picture = np.random.default_rng(1).integers(0, 256, (40, 30, 4), dtype=np.uint8)
picture[..., 3] = 255

graded = grade(library, silver, picture)
assert (np.ptp(graded[..., :3].astype(int), axis=-1) < 64).all(), "the look has hardly any colour"
assert (graded[..., 3] == 255).all()
views = {"rows with padding": (slice(None), slice(5, 20)), "every other row": (slice(None, None, 2),),
         "every other column": (slice(None), slice(None, None, 2)), "bottom up": (slice(None, None, -1),)}
for name, view in views.items():
    assert (grade(library, silver, picture[view]) == graded[view]).all(), name
assert (grade(library, silver, picture, 0) == picture).all(), "strength 0"
for wrong in "none.cube", "":
    try:
        grade(library, wrong, picture)
    except OSError as error:
        assert wrong in str(error)
    else:
        raise AssertionError(f"no error for '{wrong}'")
