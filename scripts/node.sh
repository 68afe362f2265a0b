# Sourced after packages.sh by the scripts that need Node.js: installs it where there is none, checks its version and installs exactly what a lock file names.

if ! command -v node >/dev/null 2>&1 || ! command -v npm >/dev/null 2>&1; then
  require_packages nodejs npm
fi
if [ "$(node -p 'process.versions.node.split(".")[0]')" -lt 18 ]; then
  echo "Node.js 18 or newer is needed, this is $(node --version)" >&2
  exit 1
fi

# clean_install FOLDER  node_modules/ of a folder as its package-lock.json says, left alone when it is so already
clean_install() {
  local stamp=$1/node_modules/.installed-lock
  cmp -s "$1/package-lock.json" "$stamp" && return 0
  (cd "$1" && npm ci --no-audit --no-fund --loglevel=error)
  cp "$1/package-lock.json" "$stamp"
}
