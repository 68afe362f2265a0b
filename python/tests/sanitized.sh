#!/usr/bin/env bash
# Runs the tests of the native module under the address and undefined-behaviour sanitizers.
# usage: python/tests/sanitized.sh BUILD PYTHON COMMAND   a build folder to make, an interpreter with the
#                                                         packages of python/requirements-test.txt, and an orsolva
#                                                         built without sanitizers
set -euo pipefail
build=$(realpath -m "$1")
python=$(realpath -s "$2")
command=$(realpath "$3")
cd "$(dirname "$0")/../.."
# A folder of its own: elsewhere the stubs would be made, by an interpreter without the sanitizer's runtime.
cmake --preset asan-ubsan -B "$build" -DORSOLVA_BUILD_TESTS=OFF -DORSOLVA_BUILD_PYTHON=ON -DPython_EXECUTABLE="$python"
cmake --build "$build" --target orsolva_python

# The interpreter is not built with the sanitizer, so its runtime has to be there first. Leaks are left to the test of
# flat memory: the interpreter itself keeps memory at its end.
runtime=$(clang++-14 -print-file-name=libclang_rt.asan-x86_64.so)
tests=()
for test in checker errors observations options streams tables; do tests+=("python/tests/test_$test.py"); done
env LD_PRELOAD="$runtime" ASAN_OPTIONS=detect_leaks=0:allocator_may_return_null=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
  PYTHONPATH="$build/python" PYTHONDONTWRITEBYTECODE=1 PYTHONMALLOC=malloc ORSOLVA_COMMAND="$command" \
  "$python" -m pytest -q -p no:cacheprovider "${tests[@]}"
