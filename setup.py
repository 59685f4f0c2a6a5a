"""Builds the wheel: liborvane and the simulated boards by CMake, the modules around them by pybind11's helpers.

python3 -m build --no-isolation. What CMake builds is taken from the folder ORVANE_CMAKE_BUILD of the environment, a
complete build of this tree, if that is set.
"""
import os
import pathlib
import re
import subprocess

from pybind11.setup_helpers import ParallelCompile, Pybind11Extension, build_ext
from setuptools import setup

ROOT = pathlib.Path(__file__).resolve().parent
VERSION = re.search(r"project\(orvane VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
LIBRARY = f"liborvane.so.{VERSION.partition('.')[0]}"
SIMULATOR = ["liborvane_simulator_commands.a", "liborvane_simulator_script.a", "liborvane-lab.a"]


def extension(name, folder):
    """A module of the sources in a folder, that finds the library beside itself."""
    return Pybind11Extension(
        f"orvane.{name}", sorted(str(each.relative_to(ROOT)) for each in (ROOT / folder).glob("*.cpp")), cxx_std=17,
        include_dirs=[".", "ov_sys/include"], define_macros=[("ORVANE_VERSION", f'"{VERSION}"')],
        extra_compile_args=["-g0"], extra_link_args=["-Wl,-rpath,$ORIGIN", "-Wl,--strip-debug"])


class WithLibrary(build_ext):
    """Builds the library first and puts it beside the modules."""

    def build_extensions(self):
        built = self.built_by_cmake()
        library = built / "ov_sys" / LIBRARY
        for each in self.extensions:
            archives = SIMULATOR if each.name.endswith("_lab") else []
            each.extra_objects += [str(built / "simulator" / name) for name in archives] + [str(library)]
            each.libraries += ["tirpc"] if archives else []
        super().build_extensions()
        place = pathlib.Path(self.get_ext_fullpath("orvane._orvane")).parent / LIBRARY
        subprocess.run(["strip", "--strip-debug", "-o", str(place), str(library)], check=True)

    def built_by_cmake(self):
        given = os.environ.get("ORVANE_CMAKE_BUILD")
        if given:
            return pathlib.Path(given)
        folder = pathlib.Path(self.build_temp, "cmake").resolve()
        options = ["-D", "CMAKE_BUILD_TYPE=Release"]
        for part in ("TESTS", "TOOLS", "EXAMPLES", "PYTHON"):
            options += ["-D", f"ORVANE_BUILD_{part}=OFF"]
        subprocess.run(["cmake", "-S", str(ROOT), "-B", str(folder), "-G", "Ninja", *options], check=True)
        subprocess.run(["cmake", "--build", str(folder), "--target", "orvane", "orvane_simulator_commands"], check=True)
        return folder


(ROOT / "build").mkdir(exist_ok=True)
ParallelCompile("ORVANE_JOBS", default=os.cpu_count() or 1).install()
setup(
    version=VERSION,
    packages=["orvane", "orvane.labgrid", "orvane.metrics", "orvane.run", "orvane.serve"],
    package_dir={"orvane": "python/orvane"},
    package_data={"orvane": ["*.pyi", "py.typed"]},
    ext_modules=[extension("_orvane", "python/module"), extension("_lab", "python/lab")],
    cmdclass={"build_ext": WithLibrary},
    entry_points=(ROOT / "python/entry_points.txt").read_text(),
    options={"egg_info": {"egg_base": "build"}},
    zip_safe=False,
)
