"""A host outside the tree finds an installed library, builds against it and runs.

usage: check_consumer.py cmake|pkg-config|former-path shared|static CMAKE COMPILER BUILD_FOLDER CONSUMER_FOLDER
"""
import os
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
TARGETS = {"shared": "Orsolva_cbb", "static": "static"}


def run(*command, **options):
    print("+", " ".join(command), flush=True)
    return subprocess.run(command, check=True, text=True, **options)


def library_folder(prefix):
    for folder, _, files in os.walk(prefix):
        if "libOrsolva_cbb.so" in files:
            return folder
    raise SystemExit(f"no library below {prefix}")


def build_by_cmake(kind, cmake, compiler, prefix, source, scratch):
    build = os.path.join(scratch, "build")
    run(cmake, "-S", source, "-B", build, f"-DCMAKE_CXX_COMPILER={compiler}", f"-DCMAKE_PREFIX_PATH={prefix}",
        f"-DORSOLVA_COMPONENT={TARGETS[kind]}")
    run(cmake, "--build", build)
    return os.path.join(build, "host")


def build_by_pkg_config(kind, compiler, prefix, source, scratch):
    if shutil.which("pkg-config") is None:
        print("pkg-config is not installed")
        raise SystemExit(SKIPPED)
    environment = dict(os.environ, PKG_CONFIG_PATH=os.path.join(library_folder(prefix), "pkgconfig"))
    static = [f"--{kind}"] if kind == "static" else []
    flags = run("pkg-config", *static, "--cflags", "--libs", "orsolva", env=environment,
                stdout=subprocess.PIPE).stdout
    program = os.path.join(scratch, "host")
    run(compiler, "-std=c++17", os.path.join(source, "host.cpp"), "-o", program, *flags.split(),
        *(["-static"] if static else []))
    return program


def build_by_former_path(compiler, prefix, source, scratch):
    """As hosts did that name the folder of the headers themselves."""
    program = os.path.join(scratch, "host")
    run(compiler, "-std=c++17", "-I", os.path.join(prefix, "include", "orsolva"), os.path.join(source, "host.cpp"),
        "-o", program, "-L", library_folder(prefix), "-lOrsolva_cbb")
    return program


def check_needed(kind, program):
    """The shared library is needed exactly when the host linked it."""
    needed = run("objdump", "-p", program, stdout=subprocess.PIPE).stdout
    if ("libOrsolva_cbb.so.1" in needed) != (kind == "shared"):
        raise SystemExit(f"{kind}, but linked otherwise:\n{needed}")


def main(way, kind, cmake, compiler, build, source):
    with tempfile.TemporaryDirectory() as scratch:
        installed = os.path.join(scratch, "installed")
        for component in ("runtime", "development"):
            run(cmake, "--install", build, "--component", component, "--prefix", installed)
        prefix = os.path.join(scratch, "moved")
        os.rename(installed, prefix)  # an installed tree may be moved
        if way == "cmake":
            program = build_by_cmake(kind, cmake, compiler, prefix, source, scratch)
        elif way == "former-path":
            program = build_by_former_path(compiler, prefix, source, scratch)
        else:
            program = build_by_pkg_config(kind, compiler, prefix, source, scratch)
        check_needed(kind, program)
        environment = dict(os.environ, LD_LIBRARY_PATH=library_folder(prefix))
        printed = run(program, env=environment, stdout=subprocess.PIPE).stdout
        if "library version: V1.2.9" not in printed:
            print(f"unexpected output: {printed!r}")
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
