# A bare Debian 12 in a folder, to try things in; sourced by packaging/package-test. Needs root.

readonly release=bookworm

# Prints the Debian repositories that this machine's apt has for the release: "address suite component" lines.
debian_repositories() {
    apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
        grep " $release" | sort -u
}

# Makes the bare root, once, and gives it this machine's repositories and its settings for reaching them.
make_bare_root() {
    local folder=$1
    if [[ -e $folder/.complete ]]; then
        return
    fi
    rm -rf "$folder"
    if [[ -z $(debian_repositories) ]]; then
        apt-get update --quiet
    fi
    debootstrap --variant=minbase "$release" "$folder" \
        "$(debian_repositories | awk -v release="$release" '$2 == release { print $1; exit }')"
    debian_repositories | sed 's/^/deb /' >"$folder"/etc/apt/sources.list
    apt-config dump | grep -E '^Acquire::(http|https|Check-)' >"$folder"/etc/apt/apt.conf.d/90machine || true
    echo force-unsafe-io >"$folder"/etc/dpkg/dpkg.cfg.d/scratch # nobody misses this root after a power cut
    in_root "$folder" apt-get update --quiet
    touch "$folder"/.complete
}

# Copies the bare root; the downloaded packages of former runs come along.
fresh_root() {
    local from=$1 to=$2
    rm -rf "$to"
    cp --archive --reflink=auto "$from" "$to"
}

# Runs a command inside the root, in process and mount namespaces of its own: whatever it starts ends with it.
# The root is a mount of its own there, as programs that make their own mounts expect.
in_root() {
    local folder=$1
    shift
    cp --dereference /etc/resolv.conf "$folder"/etc/resolv.conf
    unshare --mount --pid --fork --kill-child bash -c '
        mount --bind "$1" "$1" && mount -t proc proc "$1"/proc && mount --rbind /dev "$1"/dev && exec chroot "$@"' \
        in_root "$folder" env --ignore-environment HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin "$@"
}
