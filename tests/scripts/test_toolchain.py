"""A compiler without a static C++ library, as some distributions have it, builds lean programs too."""

import pathlib
import shutil
import subprocess

SOURCE = pathlib.Path(__file__).parents[2]


def test_lean_program_without_a_static_library(tmp_path):
    compiler = tmp_path / "c++"
    compiler.write_text(f"""#!/bin/sh
        case "$*" in *-static-libstdc++*) echo "cannot find -lstdc++" >&2 && exit 1 ;; esac
        exec {shutil.which("c++")} "$@"\n""")
    compiler.chmod(0o755)
    (tmp_path / "main.cpp").write_text("int main() {}\n")
    (tmp_path / "CMakeLists.txt").write_text(f"""cmake_minimum_required(VERSION 3.22)
        project(lean LANGUAGES CXX)
        include("{SOURCE}/cmake/KestTargets.cmake")
        kest_program(lean SOURCES main.cpp)\n""")
    build = tmp_path / "build"
    done = subprocess.run(f"cmake -G Ninja -S {tmp_path} -B {build} -D KEST_LEAN=ON -D CMAKE_CXX_COMPILER={compiler} && "
                          f"cmake --build {build} && {build}/lean", shell=True, capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stdout + done.stderr
    assert done.stdout.count("No static C++ library") == 1
