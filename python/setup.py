"""Builds the extension module by the CMake project that the package is part of, and puts it into the package.

ZBR_PYTHON_BUILD names a build tree of the project to be used as it is configured; else there is one of its own, build/python. What is
up to date is not built again.
"""

import os
import shutil
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext
from setuptools.command.sdist import sdist
from wheel.bdist_wheel import bdist_wheel

PROJECT = Path(__file__).resolve().parent.parent
TREE = Path(os.environ.get("ZBR_PYTHON_BUILD", PROJECT / "build" / "python"))
SCRATCH = TREE / "package"  # of setuptools, which would put files into wheels that are no longer in the package
shutil.rmtree(SCRATCH, ignore_errors=True)
SCRATCH.mkdir(parents=True)


class BuildByCMake(build_ext):
    def build_extension(self, ext: Extension) -> None:
        configure = ["cmake", "-S", PROJECT, "-B", TREE, "-DZBR_BUILD_PYTHON=ON", f"-DPython_EXECUTABLE={sys.executable}"]
        if "ZBR_PYTHON_BUILD" not in os.environ:
            configure += ["-DCMAKE_BUILD_TYPE=Release", "-DBUILD_TESTING=OFF", "-DBUILD_SHARED_LIBS=OFF"]
        if shutil.which("ninja") and not (TREE / "CMakeCache.txt").exists():
            configure += ["-G", "Ninja"]
        subprocess.run(configure, check=True)
        jobs = str(os.cpu_count() or 1)
        subprocess.run(["cmake", "--build", TREE, "--target", "zbr_python", "--config", "Release", "--parallel", jobs], check=True)
        target = Path(self.get_ext_fullpath(ext.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        built = next(path for path in (TREE / "python").rglob("_zbr.*") if path.suffix in (".so", ".pyd"))
        shutil.copyfile(built, target)
        if os.name == "posix" and shutil.which("strip"):
            subprocess.run(["strip", "-x" if sys.platform == "darwin" else "--strip-unneeded", target], check=True)


class Wheel(bdist_wheel):
    def get_tag(self) -> tuple[str, str, str]:
        return "cp311", "abi3", super().get_tag()[2]


class NoSourceDistribution(sdist):
    def run(self) -> None:
        sys.exit("zbr: this folder is a part of the project, whose sources the module is made of: build wheels, or pack the project")


# The texts of the project, wherever the package is built from.
setup(
    version=(PROJECT / "VERSION").read_text().strip(),
    long_description=(PROJECT / "docs" / "python.md").read_text(),
    long_description_content_type="text/markdown",
    license_files=["LICENSE"],
    ext_modules=[Extension("zbr._zbr", [], py_limited_api=True)],
    options={"build": {"build_base": str(SCRATCH)}, "egg_info": {"egg_base": str(SCRATCH)}},
    cmdclass={"build_ext": BuildByCMake, "bdist_wheel": Wheel, "sdist": NoSourceDistribution},
)
