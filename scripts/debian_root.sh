# Sourced by the scripts that try things in a clean root of Debian, made from this system's own mirror in the folder
# $root. They need the rights of root or sudo.

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo -n)

# Sources of Debian itself, one per line as in sources.list.
debian_sources() {
  apt-get indextargets --format 'deb $(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
    sort -u
}

# make_root_of SUITE
make_root_of() {
  local own mirror
  own=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
  mirror=$(debian_sources | awk -v suite="$own" '$3 == suite { print $2; exit }')
  [ -n "$mirror" ] || { echo "no sources of Debian in this system's apt" >&2; return 1; }
  "${as_root[@]}" debootstrap --variant=minbase "$1" "$root" "$mirror"
}

# in_root COMMAND...
in_root() {
  "${as_root[@]}" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 \
    ${http_proxy:+http_proxy="$http_proxy"} chroot "$root" "$@"
}
