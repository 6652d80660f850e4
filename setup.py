"""Builds the extension module with CMake, the library in it. All else about the package is in pyproject.toml.

NUQI_BUILD_DIR names a build folder, configured with NUQI_BUILD_PYTHON, to take it from.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent
VERSION = ".".join(re.findall(r"NUQI_VERSION_\w+ (\d+)", (ROOT / "include/nuqi/nuqi.h").read_text(encoding="utf-8")))


def pybind11_options() -> list[str]:
    """Where pip has installed pybind11; Debian's package is found without."""
    try:
        import pybind11
    except ImportError:
        return []
    return [f"-Dpybind11_DIR={pybind11.get_cmake_dir()}"]


class CMakeBuild(build_ext):
    """Leaves the module, and what is made from nuqi.h, where setuptools looks for a compiled extension."""

    def build_extension(self, extension: Extension) -> None:
        build = pathlib.Path(os.environ.get("NUQI_BUILD_DIR", self.build_temp)).resolve()
        target = pathlib.Path(self.get_ext_fullpath(extension.name)).resolve()
        if "NUQI_BUILD_DIR" not in os.environ:
            options = ["-DNUQI_BUILD_PYTHON=ON", "-DNUQI_BUILD_TESTS=OFF", f"-DPython3_EXECUTABLE={sys.executable}"]
            subprocess.run(["cmake", "-S", ROOT, "-B", build, *options, *pybind11_options()], check=True)
        subprocess.run(
            ["cmake", "--build", build, "--target", "nuqi_python_package", "--parallel", str(os.cpu_count() or 1)],
            check=True,
        )
        target.parent.mkdir(parents=True, exist_ok=True)
        built = build / "python" / "nuqi"
        shutil.copy(built / target.name, target)
        subprocess.run(["strip", "--strip-unneeded", target], check=False)
        for made in ("c.pyi", "_header.py"):
            shutil.copy(built / made, target.parent)


setup(version=VERSION, ext_modules=[Extension("nuqi._native", [])], cmdclass={"build_ext": CMakeBuild})
