#!/usr/bin/env python3
"""Builds the sources once more, from a copy in another folder and without a compiler cache, and compares what both
builds install byte by byte.

usage: check_reproducible.py library|all CMAKE SOURCE_FOLDER BUILD_FOLDER
  library  the shared libraries, the static archive and what comes with them
  all      the command too, which takes some minutes
"""
import filecmp
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

COMPONENTS = {"library": ["runtime", "development"], "all": ["runtime", "development", "tools"]}
TAKEN_OVER = ["CMAKE_BUILD_TYPE", "CMAKE_CXX_COMPILER", "CMAKE_CXX_FLAGS", "CMAKE_GENERATOR"]


def run(*command, **options):
    print("+", " ".join(map(str, command)), flush=True)
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, **options)


def cache_of(build):
    text = (build / "CMakeCache.txt").read_text(encoding="utf-8")
    return dict(re.findall(r"^(\w+):\w+=(.*)$", text, re.M))


def copy_sources(source, target):
    listed = subprocess.run(["git", "-C", source, "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                            stdout=subprocess.PIPE, text=True)
    if listed.returncode != 0:
        shutil.copytree(source, target, ignore=shutil.ignore_patterns("build*"))
        return
    for name in filter(None, listed.stdout.split("\0")):
        if (source / name).is_file():
            (target / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(source / name, target / name)


def build_copy(extent, cmake, cache, source, build):
    environment = dict(os.environ, SOURCE_DATE_EPOCH=cache["ORSOLVA_SOURCE_EPOCH"], CCACHE_DISABLE="1")
    settings = [f"-D{name}={cache[name]}" for name in TAKEN_OVER if cache.get(name)]
    run(cmake, "-S", source, "-B", build, "-DORSOLVA_BUILD_TESTS=OFF", "-DCMAKE_CXX_COMPILER_LAUNCHER=",
        f"-DORSOLVA_BUILD_HOST={'ON' if extent == 'all' else 'OFF'}", *settings, env=environment)
    run(cmake, "--build", build, "--parallel", "2", env=environment)


def install(extent, cmake, build, prefix):
    for component in COMPONENTS[extent]:
        run(cmake, "--install", build, "--component", component, "--prefix", prefix)
    return {file.relative_to(prefix) for file in prefix.rglob("*") if file.is_file()}


def main(extent, cmake, source, build):
    source, build = pathlib.Path(source).resolve(), pathlib.Path(build).resolve()
    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)
        copy, other = scratch / "a folder of another name", scratch / "other"
        here, there = scratch / "here", scratch / "there"
        files = install(extent, cmake, build, here)
        copy_sources(source, copy)
        build_copy(extent, cmake, cache_of(build), copy, other)
        problems = [f"only in one build: {name}" for name in files ^ install(extent, cmake, other, there)]
        for name in sorted(files):
            if (there / name).is_file() and not filecmp.cmp(here / name, there / name, shallow=False):
                problems.append(f"differs: {name}")
        print("\n".join(problems) if problems else f"{len(files)} files, byte by byte the same")
    return 1 if problems or not files else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
