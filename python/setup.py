"""Builds with Debian's python3-setuptools, without network access. There is no pyproject.toml because pip would then
download setuptools."""

import re
import shutil
from pathlib import Path

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py

project = Path(__file__).resolve().parent.parent
library = project / "build/release/liblumvane.so.0"


class BuildWithLibrary(build_py):
    """Bundles the library if it has been built, so that LUMVANE_LIBRARY need not be set."""

    def run(self):
        super().run()
        if library.exists():
            shutil.copy(library, Path(self.build_lib) / "lumvane")


class PlatformDistribution(Distribution):
    def has_ext_modules(self):
        return library.exists()


setup(
    name="lumvane",
    version=".".join(re.findall(r"define LUMVANE_VERSION_[A-Z]+ (\d+)", (project / "include/lumvane.h").read_text())),
    description="Per-frame colour effects on NumPy pictures",
    license="MIT",
    packages=["lumvane"],
    package_data={"lumvane": ["py.typed"]},
    python_requires=">=3.9",
    install_requires=["numpy"],
    extras_require={"farm": ["distributed", "opencv-python"]},
    cmdclass={"build_py": BuildWithLibrary},
    distclass=PlatformDistribution,
)
