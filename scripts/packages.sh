# Sourced by the scripts: installs the Debian packages a step needs, or says which command would.

# require_packages PACKAGE...  returns when all are installed; exits 1 with the exact command otherwise
require_packages() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then
      as_root=(sudo)
    else
      echo "Missing packages. Install them with:" >&2
      echo "  sudo apt-get update && sudo apt-get install -y ${missing[*]}" >&2
      exit 1
    fi
  fi
  if ! command -v apt-get >/dev/null 2>&1; then
    echo "Missing packages, and there is no apt-get here. Needed (Debian names): ${missing[*]}" >&2
    exit 1
  fi
  echo "Installing ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null
}

build_packages=(g++ cmake ninja-build pkg-config libfmt-dev libcli11-dev nlohmann-json3-dev libtomlplusplus-dev zlib1g-dev libarchive-dev libcurl4-openssl-dev libcpp-httplib-dev prometheus-cpp-dev)
test_packages=(openssl python3-jsonschema libgtest-dev binutils valgrind python3 python3-venv python3-dev)
ci_packages=(ccache clang-14 clang-tidy-14 clang-format-14 libclang-rt-14-dev prometheus zsh fish)
web_packages=(chromium fonts-dejavu-core)
aarch64_packages=(g++-aarch64-linux-gnu qemu-user cmake ninja-build googletest python3)
mingw_packages=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine64 cmake ninja-build googletest python3)
docs_packages=(doxygen)
bench_packages=(libbenchmark-dev linux-perf valgrind python3-matplotlib)
wheel_packages=(debootstrap python3-venv python3-dev libarchive-dev libbz2-dev liblzma-dev libzstd-dev nettle-dev)
package_packages=(dpkg-dev file lintian debootstrap)
