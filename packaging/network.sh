# Says whether this machine lets a program make a private network; sourced by ./demo and ./check.

# Tries it: network and mount namespaces, within a user namespace where this is not root.
private_network_possible() {
    unshare --net --mount true 2>/dev/null || unshare --user --map-root-user --net --mount true 2>/dev/null
}

# Prints, for one kernel setting that is 0 (or 1 for a restriction), the command that changes it.
advise_setting() {
    local file=/proc/sys/${1//.//} forbidding=$2 value=$3
    if [[ -r $file && $(<"$file") == "$forbidding" ]]; then
        echo "    sudo sysctl -w $1=$value    (it is $forbidding now)"
    fi
}

# Prints why the private network cannot be made here and what to do instead.
private_network_advice() {
    local settings
    settings=$(
        advise_setting kernel.unprivileged_userns_clone 0 1
        advise_setting user.max_user_namespaces 0 15000
        advise_setting user.max_net_namespaces 0 15000
        advise_setting kernel.apparmor_restrict_unprivileged_userns 1 0
    )
    echo "This machine does not let you make a private network (user and network namespaces)."
    echo "The simulated boards live in one, so that nothing they send can leave the machine. You can"
    ((EUID == 0)) || echo "  - run this as root;"
    if [[ -n $settings ]]; then
        echo "  - change the setting that forbids it:"
        echo "$settings"
    else
        echo "  - allow user namespaces (kernel.unprivileged_userns_clone=1, user.max_user_namespaces=15000);"
    fi
    echo "  - in a container: start it with --privileged, or with"
    echo "    --cap-add SYS_ADMIN --security-opt seccomp=unconfined --security-opt apparmor=unconfined;"
}
