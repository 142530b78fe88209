"""Separate builds: fuzz targets, and which lines and branches the tests and failing system calls reach."""

import glob
import json
import os
import re
import shutil
import subprocess

import pytest

from attacks import SOURCES

BUILD = SOURCES + "/build/coverage"
FOLDERS = ("log", "text", "lipc", "backend", "app")


def cover(what, *options):
    programs = [word for path in glob.glob(BUILD + "/bin/*") for word in ("-object", path)]
    command = ["llvm-cov", what, *programs[1:], "-instr-profile", BUILD + "/all.profdata", *options]
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=True).stdout


@pytest.mark.full
@pytest.mark.row("coverage", "95 % of lines, 90 % of branches in the five folders; all of the line parser")
def test_coverage(row):
    """What is not reached is in build/coverage/missing."""
    soak = ["tools/private_namespaces", "/usr/bin/python3", "-m", "pytest", "--preset", "coverage", "tests/soak"]
    subprocess.run(["scripts/prepare", "coverage", "build", "test", "fuzz"], cwd=SOURCES, check=True)
    shutil.rmtree(BUILD + "/profiles", ignore_errors=True)
    for name, command in (("%4m", ["ctest", "--preset", "coverage", "--parallel", str(os.cpu_count())]),
                          ("%p", [*soak, "-k", "test_settings and errors"]),  # those that write a profile fail, too
                          ("abort-%4m", [*soak, "-k", "test_abort_errors"])):
        environment = {**os.environ, "LLVM_PROFILE_FILE": f"{BUILD}/profiles/{name}.profraw"}
        subprocess.run(command, cwd=SOURCES, env=environment, check=False)
    merge = ["llvm-profdata", "merge", "-sparse", "--failure-mode=all", "-o", BUILD + "/all.profdata"]
    subprocess.run([*merge, *glob.glob(BUILD + "/profiles/*")], check=True)

    paths = [os.path.join(SOURCES, folder) for folder in FOLDERS]
    files = json.loads(cover("export", "-summary-only", *paths))["data"][0]["files"]

    def rate(kind, folder=""):
        summaries = [file["summary"][kind] for file in files if f"/{folder}" in file["filename"]]
        return 100 * sum(each["covered"] for each in summaries) / sum(each["count"] for each in summaries)

    row.notes.append(f"{rate('lines'):.1f} % of lines, {rate('branches'):.1f} % of branches")
    row.notes += [f"{each} {rate('lines', each + '/'):.1f} / {rate('branches', each + '/'):.1f}" for each in FOLDERS]
    row.expect(rate("lines") >= 95 and rate("branches") >= 90, "too little")
    row.expect(rate("branches", "backend/EncodingLine.cpp") == 100, "parser")
    with open(BUILD + "/missing", "w", encoding="utf-8") as missing:
        shown = cover("show", *paths, "-show-branches=count")
        missing.writelines(re.findall(r"(?:^/.*:$|^ *\d+\| +0\||.*Branch .*(?:True|False): 0\b).*\n", shown, re.M))


@pytest.mark.row("fuzz: {targets}", "0 findings; in a full run 2 M inputs a minute of one processor, settings 0.5 M")
@pytest.mark.parametrize("targets", ["settings lines", "session abort", "control"])
def test_fuzz(targets, row):
    """As many at once as the smallest machine has processors. Short runs, abort and control have no goal for speed.

    Each input of settings is read and written several times."""
    command = [SOURCES + "/fuzz/run", str(row.count(50, 3)), *targets.split()]
    fuzz = subprocess.run(command, capture_output=True, text=True, check=False)
    for _, line in row.times(1, 1, fuzz.stdout.splitlines()[1:]):
        name, inputs, _, speed, findings = line.split()
        row.notes.append(f"{name}: {inputs} inputs, {int(speed) / 1e6:.1f} M a minute")
        row.expect(int(inputs) > 0 and findings == "0", f"{name}: {findings} findings")
        goal = {"lines": 2_000_000, "session": 2_000_000, "settings": 500_000}.get(name, 0)
        row.expect(int(speed) >= row.count(goal, 0), f"{name} is slow")
    row.expect(fuzz.returncode == 0 and row.tried == len(targets.split()), fuzz.stderr)
