"""Builds the vexa package: CMake compiles the engine and its pybind11 bridge (the module
_vexa) in a build directory of the source tree, and the module is copied into the package.

    pip install --no-build-isolation ./python

VEXA_BUILD_DIR names the build directory (default: build-python beside python/); an existing
CMake build directory (the release build, build/) is reused as it is, with the module added,
so that the engine is not compiled twice.
"""

import glob
import os
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        build = os.path.abspath(os.environ.get("VEXA_BUILD_DIR", os.path.join(ROOT,
                                                                             "build-python")))
        options = ["-DVEXA_PYTHON=ON", "-DPython_EXECUTABLE=" + sys.executable]
        if not os.path.exists(os.path.join(build, "CMakeCache.txt")):
            options += ["-DCMAKE_BUILD_TYPE=Release", "-DVEXA_BUILD_TESTS=OFF",
                        "-DVEXA_BUILD_BENCH=OFF", "-DVEXA_BUILD_JNI=OFF"]
            if shutil.which("ninja"):
                options += ["-G", "Ninja"]
            if shutil.which("ccache"):
                options += ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"]
        subprocess.check_call(["cmake", "-S", ROOT, "-B", build] + options)
        subprocess.check_call(["cmake", "--build", build, "--target", "vexa_python", "-j",
                               str(os.cpu_count() or 1)])
        built = glob.glob(os.path.join(build, "python", "_vexa*.so"))
        if not built:
            sys.exit("vexa: the build left no module _vexa in %s/python" % build)
        target = self.get_ext_fullpath(ext.name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        shutil.copyfile(built[0], target)


setup(
    name="vexa",
    version="0.1.0",
    description="Exponential random graph models of social networks with the vexa engine",
    packages=["vexa"],
    ext_modules=[Extension("vexa._vexa", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    python_requires=">=3.9",
    install_requires=["numpy", "pandas", "networkx"],
    extras_require={"plot": ["matplotlib"], "progress": ["tqdm"], "sparse": ["scipy"]},
)
