"""The examples build and print what their pages promise.

usage: check_examples.py run NAME COMMAND...
       check_examples.py installed CMAKE C_COMPILER CXX_COMPILER BUILD_FOLDER EXAMPLES_FOLDER

The second form installs the library, moves it, and builds the examples outside the tree with what lies there: all by
the CMake package, that in C also with the flags of pkg-config.
"""
import os
import subprocess
import sys
import tempfile

PRINTED = {
    "whole_day": """24.0 h, GPS 100.00 % complete
L1 1C: multipath 0.34 m, SNR 43.4 dB-Hz
L2 2W: multipath 0.33 m, SNR 43.4 dB-Hz
""",
    "live_feed": """ 0.5 h: 100.00 % complete, 0 epochs lost
 1.0 h: 100.00 % complete, 0 epochs lost
 1.5 h: 89.27 % complete, 20 epochs lost
 2.0 h: 91.44 % complete, 20 epochs lost
 2.5 h: 93.17 % complete, 20 epochs lost
 3.0 h: 94.33 % complete, 20 epochs lost
""",
    "observer": """G01: geometry-free step of -1.332 m, threshold 0.786 m
G01: geometry-free step of -1.332 m, threshold 0.786 m
1950 satellite-epochs observed
multipath averaged over 10 epochs of 30 s
""",
    "plain_c": """library 1.2.9: success
GPS: 100.00 % of the expected observations, station at 3582099 532588 5232745 m
""",
}


def run(*command, **options):
    print("+", " ".join(command), flush=True)
    return subprocess.run(command, check=True, text=True, **options)


def library_folder(prefix):
    return next(folder for folder, _, files in os.walk(prefix) if "liborsolva_c.so" in files)


def build_by_pkg_config(compiler, libraries, examples, scratch):
    environment = dict(os.environ, PKG_CONFIG_PATH=os.path.join(libraries, "pkgconfig"))
    flags = run("pkg-config", "--cflags", "--libs", "orsolva_c", env=environment, stdout=subprocess.PIPE).stdout
    program = os.path.join(scratch, "plain_c")
    sources = [os.path.join(examples, name) for name in ("plain_c.c", "small_sky.c")]
    run(compiler, "-std=c99", *sources, "-o", program, *flags.split(), "-lm",
        env={**os.environ, "LD_LIBRARY_PATH": ""})
    return program


def check_output(name, *command):
    printed = run(*command, stdout=subprocess.PIPE).stdout.replace("\r\n", "\n")
    if printed == PRINTED[name]:
        return False
    print(f"{name} printed\n{printed}and not\n{PRINTED[name]}")
    return True


def check_installed(cmake, c_compiler, cxx_compiler, build, examples):
    with tempfile.TemporaryDirectory() as scratch:
        installed, prefix = os.path.join(scratch, "installed"), os.path.join(scratch, "moved")
        for component in ("runtime", "development"):
            run(cmake, "--install", build, "--component", component, "--prefix", installed)
        os.rename(installed, prefix)
        built = os.path.join(scratch, "build")
        run(cmake, "-S", examples, "-B", built, f"-DCMAKE_C_COMPILER={c_compiler}",
            f"-DCMAKE_CXX_COMPILER={cxx_compiler}", f"-DCMAKE_PREFIX_PATH={prefix}", "-DORSOLVA_WERROR=ON")
        run(cmake, "--build", built)
        # The C library needs the other one, which lies in no folder of the system here.
        os.environ["LD_LIBRARY_PATH"] = library_folder(prefix)
        programs = {name: os.path.join(built, name) for name in PRINTED}
        failed = any([check_output(name, program) for name, program in programs.items()])
        by_flags = build_by_pkg_config(c_compiler, library_folder(prefix), examples, scratch)
        return check_output("plain_c", by_flags) or failed


def main(way, *arguments):
    failed = check_output(*arguments) if way == "run" else check_installed(*arguments)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
