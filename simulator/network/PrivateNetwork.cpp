// Namespaces, cables and routes of the private network.
#include "simulator/network/PrivateNetwork.h"

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "simulator/network/Netlink.h"
#include "simulator/network/PrivateFiles.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sched.h>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneSim {
namespace {

constexpr int kMostInterfaces = 8;
constexpr int kFirstNetwork = 83;
constexpr int kFirstLabIndex = 11; // interface numbers of the cables' two ends
constexpr int kFirstBoardIndex = 101;
constexpr const char* kBoards = "10.83.0.0";
constexpr std::uint8_t kBoardsBits = 17;

struct State {
    bool entered = false;
    Orvane::FileDescriptor boardSide;
    std::vector<int> boardInterfaces;
};

// Written once by `enter`, while the process has one thread.
State& state() {
    static State instance;
    return instance;
}

std::string labInterface(int index) {
    return "lab" + std::to_string(index);
}
std::string boardInterface(int index) {
    return "boards" + std::to_string(index);
}
std::string labAddress(int index) {
    return "10." + std::to_string(kFirstNetwork + index) + ".255.254";
}
std::string boardSideAddress(int index) {
    return "10." + std::to_string(kFirstNetwork + index) + ".255.253";
}

void check(int result, const char* step) {
    if (result != 0)
        throw std::system_error(errno, std::generic_category(), step);
}

Orvane::FileDescriptor currentNetwork() {
    Orvane::FileDescriptor network(::open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC));
    if (!network)
        throw std::system_error(errno, std::generic_category(), "cannot open /proc/thread-self/ns/net");
    return network;
}

// Tries in a child whether the kernel grants these namespaces, since leaving a user namespace is impossible.
// Returns 0 or the error number.
int tryNamespaces(int flags) {
    const pid_t child = ::fork();
    if (child < 0)
        return errno;
    if (child == 0)
        ::_exit(::unshare(flags) == 0 ? 0 : errno);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : EPERM;
}

// The namespaces to ask for: with a user namespace unless root can do without.
int grantedNamespaces() {
    constexpr int plain = CLONE_NEWNET | CLONE_NEWNS;
    if (::geteuid() == 0 && tryNamespaces(plain) == 0)
        return plain;
    const int error = tryNamespaces(plain | CLONE_NEWUSER);
    if (error == 0)
        return plain | CLONE_NEWUSER;
    throw std::runtime_error(
        "the kernel refuses a private network (" + std::generic_category().message(error) +
        "). Run as root, or let users have namespaces: sysctl kernel.unprivileged_userns_clone=1 (where that "
        "setting "
        "exists) and user.max_user_namespaces above 0; a container may need --privileged. Without a private "
        "network, run one board as root with: orvane-sim --address 127.0.0.2, and reach it by that address.");
}

void writeFile(const char* path, const std::string& text) {
    std::ofstream file(path);
    file << text << std::flush;
    if (!file)
        throw std::system_error(errno, std::generic_category(), std::string("cannot write ") + path);
}

void becomeRootOfOwnNamespace(uid_t user, gid_t group) {
    writeFile("/proc/self/setgroups", "deny");
    writeFile("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
    writeFile("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
}

// A reply may arrive by another interface than the one its board's network is routed to. Where the setting
// is read-only it already allows that, or boards answer on the first interface only.
void acceptRepliesOnAnyInterface() {
    std::ofstream("/proc/sys/net/ipv4/conf/all/rp_filter") << "0";
}

void makeBoardSide() {
    check(::unshare(CLONE_NEWNET), "cannot make the board side");
    state().boardSide = currentNetwork();
    Netlink netlink;
    netlink.setUp("lo");
    netlink.addLocalRoute(kBoards, kBoardsBits);
}

void makeHostSide(int interfaces) {
    check(::unshare(CLONE_NEWNET), "cannot make the host side");
    acceptRepliesOnAnyInterface();
    Netlink netlink;
    netlink.setUp("lo");
    for (int i = 0; i < interfaces; ++i) {
        netlink.addCable(labInterface(i), kFirstLabIndex + i, boardInterface(i), kFirstBoardIndex + i,
                         state().boardSide.get());
        netlink.addAddress(labInterface(i), labAddress(i), 16);
        netlink.setUp(labInterface(i));
    }
    netlink.addLinkRoute("224.0.0.0", 4, labInterface(0));
    // One neighbour for all boards: the kernel remembers 1,024 for all the namespaces of the machine.
    netlink.addGatewayRoute(kBoards, kBoardsBits, boardSideAddress(0));
}

void plugBoardSideIn(int interfaces) {
    check(::setns(state().boardSide.get(), CLONE_NEWNET), "cannot join the board side");
    Netlink netlink;
    for (int i = 0; i < interfaces; ++i) {
        netlink.addAddress(boardInterface(i), boardSideAddress(i), 16);
        netlink.setUp(boardInterface(i));
        netlink.awaitRunning(boardInterface(i));
        state().boardInterfaces.push_back(Netlink::indexOf(boardInterface(i)));
    }
}

void makeNetwork(const PrivateNetworkOptions& options) {
    makeBoardSide();
    makeHostSide(options.hostInterfaces);
    const Orvane::FileDescriptor hostSide = currentNetwork();
    plugBoardSideIn(options.hostInterfaces);
    check(::setns(hostSide.get(), CLONE_NEWNET), "cannot return to the host side");
    Netlink netlink;
    for (int i = 0; i < options.hostInterfaces; ++i)
        netlink.awaitRunning(labInterface(i));
    resolveNamesLocally();
    if (!options.hosts.empty())
        replaceFile("/etc/hosts", options.hosts);
}

} // namespace

void PrivateNetwork::enter(const PrivateNetworkOptions& options) {
    if (state().entered)
        throw std::logic_error("this process is in a private network already");
    if (options.hostInterfaces < 1 || options.hostInterfaces > kMostInterfaces)
        throw std::runtime_error("a private network has 1 to 8 host interfaces");
    const int granted = grantedNamespaces();
    const uid_t user = ::geteuid();
    const gid_t group = ::getegid();
    const Orvane::FileDescriptor outside = currentNetwork();
    try {
        check(::unshare(granted & ~CLONE_NEWNET), "cannot make the private namespaces");
        if ((granted & CLONE_NEWUSER) != 0)
            becomeRootOfOwnNamespace(user, group);
        check(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), "cannot make mounts private");
        makeNetwork(options);
    } catch (...) {
        state().boardSide.reset();
        state().boardInterfaces.clear();
        // Back to where the process was; from inside a new user namespace the kernel does not allow it.
        [[maybe_unused]] const int restored = ::setns(outside.get(), CLONE_NEWNET);
        throw;
    }
    state().entered = true;
}

bool PrivateNetwork::entered() {
    return state().entered;
}

void PrivateNetwork::joinBoardSide() {
    check(::setns(state().boardSide.get(), CLONE_NEWNET), "cannot join the board side");
}

const std::vector<int>& PrivateNetwork::boardInterfaces() {
    return state().boardInterfaces;
}

} // namespace OrvaneSim
