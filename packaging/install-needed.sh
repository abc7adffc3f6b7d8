# Sourced by the scripts at the top of the repository: what they need from Debian 12.

build_packages=(build-essential cmake ninja-build qt6-base-dev qt6-svg-dev libjpeg-dev libtiff-dev zlib1g-dev libgtest-dev)
reader_packages=(python3-tifffile python3-zarr)
virtual_display_packages=(xvfb xauth xdotool imagemagick)

# Prints the one line that tells why the script ends, and ends it.
fail()
{
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# install_needed PACKAGE...: installs those that are missing; needs neither network nor root when none is.
install_needed()
{
    command -v dpkg-query >/dev/null || fail "only Debian packages can be installed here; needed: $*"
    local package missing=()
    for package in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed* ]] || missing+=("$package")
    done
    ((${#missing[@]})) || return 0

    local as_root=()
    if [[ $(id -u) -ne 0 ]]; then
        command -v sudo >/dev/null || fail "not root and no sudo; install these packages first: ${missing[*]}"
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    # An outdated or unreachable package list is no error by itself: what matters is whether the install works.
    "${as_root[@]}" apt-get -qq update || true
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -y --no-install-recommends \
        -o DPkg::Lock::Timeout=300 install "${missing[@]}" >/dev/null || fail "cannot install ${missing[*]}"
}
