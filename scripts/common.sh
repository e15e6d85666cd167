# Sourced by the shell scripts in this folder; makes the project's folder the current one.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# What the command line tool and the Python package need; tests need more.
tool_packages=(libcli11-dev libfmt-dev nlohmann-json3-dev zlib1g-dev libxlsxwriter-dev)
python_packages=(python3-dev pybind11-dev python3-setuptools python3-wheel python3-numpy
  python3-pandas python3-xarray python3-dask python3-distributed python3-netcdf4
  python3-matplotlib python3-openpyxl)

# as_root COMMAND...: runs it as root.
as_root() {
  local root=()
  [ "$(id -u)" -eq 0 ] || root=(sudo)
  "${root[@]}" "$@"
}

# install PACKAGE...: installs missing Debian packages, quietly.
install() {
  local missing=()
  local package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "Installing ${missing[*]}"
  as_root apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -qq -y --no-install-recommends "${missing[@]}" >/dev/null
}

# quietly COMMAND...: shows the output of a command only if it fails.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}
