# Sourced by the scripts: a Python environment with what a requirements file names, from PyPI.

# python_environment FOLDER REQUIREMENTS  makes it where it is not yet as the file says
python_environment() {
  local stamp=$1/.installed-requirements
  cmp -s "$2" "$stamp" && return 0
  echo "Installing the packages of $2 into $1"
  python3 -m venv "$1"
  "$1/bin/python" -m pip install --quiet --disable-pip-version-check -r "$2"
  cp "$2" "$stamp"
}
