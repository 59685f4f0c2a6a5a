# Installs the Debian packages that a script needs; sourced by ./demo and ./check at the root of the tree.

# Prints the packages of the named groups (packaging/debian-packages), one on each line.
packages_of() {
    local group
    for group in "$@"; do
        awk -v group="$group" '$1 == group { for (i = 2; i <= NF; ++i) print $i }' packaging/debian-packages
    done | sort -u
}

# Prints those of the given packages that are not installed.
missing_packages() {
    local package
    for package in "$@"; do
        dpkg-query --show --showformat '${db:Status-Status}\n' "$package" 2>/dev/null |
            grep --quiet --line-regexp installed || echo "$package"
    done
}

# Runs a command as root: directly, or through sudo.
as_root() {
    if ((EUID == 0)); then
        "$@"
    else
        sudo "$@"
    fi
}

# Installs what the named groups lack and says so; silent, and without the network, when nothing is missing.
need_packages() {
    if ! command -v dpkg-query >/dev/null; then
        echo "This is not a Debian system; these packages, or what they hold, must be there:" \
            $(packages_of "$@")
        return
    fi
    local missing
    missing=$(missing_packages $(packages_of "$@"))
    if [[ -z $missing ]]; then
        return
    fi
    echo "Installing the Debian packages that are missing:" $missing
    if ((EUID != 0)) && ! command -v sudo >/dev/null; then
        echo "There is no sudo here. As root, run: apt-get install" $missing >&2
        return 1
    fi
    as_root apt-get update --quiet
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install --quiet --yes --no-install-recommends $missing
}

# Puts rpcinfo on the PATH, out of its package: installing that would start a port mapper on this machine.
need_rpcinfo() {
    local folder=$PWD/build/tools
    PATH=$PATH:$folder/rpcbind/usr/sbin:$folder/rpcbind/usr/bin:/usr/sbin
    if command -v rpcinfo >/dev/null; then
        return
    fi
    echo "Unpacking rpcinfo of the Debian package rpcbind to build/tools"
    mkdir -p "$folder"
    (
        cd "$folder"
        apt-get download --quiet rpcbind || { as_root apt-get update --quiet && apt-get download --quiet rpcbind; }
        dpkg-deb --extract rpcbind_*.deb rpcbind
        rm rpcbind_*.deb
    )
}
