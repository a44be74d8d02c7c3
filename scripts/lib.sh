# Shared by the scripts here: source it. Leaves the shell strict and in the project's top folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Debian packages for the tool with its library, and what the tests and checks need beyond them. Everything the presets look for
# at configuration is in the first list, so that all scripts share one build tree.
build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libgtest-dev libgeos-dev librsvg2-bin)
check_packages=("${build_packages[@]}" binutils pkg-config clang libclang-rt-dev clang-format python3-ezdxf)
windows_packages=(g++-mingw-w64-x86-64-posix wine wine64 googletest binutils)
web_packages=(emscripten nodejs node-acorn cmake ninja-build nlohmann-json3-dev)
page_packages=(chromium fonts-dejavu-core)
lint_packages=("${check_packages[@]}" clang-tidy cppcheck python3-dev)
python_packages=(python3-dev python3-venv python3-pip python3-setuptools python3-wheel python3-numpy python3-pytest python3-hypothesis
                 python3-shapely python3-ezdxf python3-matplotlib python3-mypy python3-nbclient python3-nbformat python3-ipykernel
                 python3-distributed)
bench_packages=(g++ cmake ninja-build python3 libbenchmark-dev libpolyclipping-dev libgeos-dev libboost-dev nlohmann-json3-dev
                libocct-modeling-algorithms-dev libocct-modeling-data-dev libocct-foundation-dev libcgal-dev libopenmesh-dev)

say() { printf '\n== %s\n' "$*"; }
fail() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# Installs those of the named Debian packages that are missing. Elsewhere than on Debian the names are a hint to the reader.
need() {
  command -v dpkg-query >/dev/null || { echo "not a Debian system; these packages' equivalents are needed: $*"; return 0; }
  local package missing=()
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [[ ${#missing[@]} -gt 0 ]] || return 0
  local as_root=()
  if [[ $EUID -ne 0 ]]; then
    command -v sudo >/dev/null || fail "please install as root: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  say "Installing ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Configures a preset (quick when nothing changed) and builds the given targets, or everything. Prints little unless it fails.
build() {
  local preset=$1
  shift
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"}
}
