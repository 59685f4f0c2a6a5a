// The asking end of the control socket.
#include "simulator/control/ControlSocket.h"
#include "simulator/control/LocalSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/socket.h>
#include <sys/time.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneSim {
namespace {

constexpr timeval kConnectLimit{5, 0};

// The user who serves the other end; nobody when the kernel does not say.
uid_t userBehind(const Orvane::FileDescriptor& connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    constexpr uid_t kNobody = 65534;
    return ::getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.uid : kNobody;
}

// One request and its answer, which together take `limit` at most.
class Conversation {
public:
    Conversation(const std::string& path, std::chrono::milliseconds limit)
        : path_(path), end_(std::chrono::steady_clock::now() + limit), socket_(connectLocal(path)) {
        if (!socket_)
            throw std::runtime_error("no lab answers at " + path + ": " +
                                     std::generic_category().message(errno));
        if (!isOurs(socket_))
            throw std::runtime_error("user " + std::to_string(userBehind(socket_)) + " serves " + path +
                                     ", neither you nor root");
    }

    void send(std::string_view text) {
        while (!text.empty()) {
            await(POLLOUT);
            const ssize_t count =
                ::send(socket_.get(), text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count < 0 && errno != EAGAIN)
                throw std::runtime_error("the lab at " + path_ + " takes no request");
            text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
    }

    // What comes in front of the first line end.
    std::string receiveLine() {
        std::string answer;
        std::array<char, 65536> room{};
        while (answer.empty() || answer.back() != '\n') {
            await(POLLIN);
            const ssize_t count = ::recv(socket_.get(), room.data(), room.size(), MSG_DONTWAIT);
            if (count == 0 || (count < 0 && errno != EAGAIN))
                throw std::runtime_error("the lab at " + path_ + " gave no answer");
            answer.append(room.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
        answer.pop_back();
        return answer;
    }

private:
    void await(short events) const {
        pollfd waiting{socket_.get(), events, 0};
        for (;;) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(end_ - std::chrono::steady_clock::now());
            if (left.count() <= 0)
                throw std::runtime_error("the lab at " + path_ + " took too long to answer");
            if (::poll(&waiting, 1, static_cast<int>(left.count())) > 0)
                return;
        }
    }

    const std::string& path_;
    std::chrono::steady_clock::time_point end_;
    Orvane::FileDescriptor socket_;
};

} // namespace

std::vector<std::string> localFolders() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe)
    std::error_code ignored;
    if (runtime && *runtime && std::filesystem::is_directory(runtime, ignored))
        return {runtime, "/tmp"};
    return {"/tmp"};
}

sockaddr_un localPlace(const std::string& path) {
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof place.sun_path)
        throw std::runtime_error("a control socket's path has 1 to " +
                                 std::to_string(sizeof place.sun_path - 1) + " characters: \"" + path + "\"");
    std::memcpy(place.sun_path, path.c_str(), path.size() + 1);
    return place;
}

Orvane::FileDescriptor connectLocal(const std::string& path) {
    const sockaddr_un place = localPlace(path);
    Orvane::FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &kConnectLimit, sizeof kConnectLimit);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0)
        return {};
    return socket;
}

bool isOurs(const Orvane::FileDescriptor& connection) {
    const uid_t user = userBehind(connection);
    return user == ::geteuid() || user == 0;
}

std::string findControlPath() {
    const char* own = std::getenv(kControlVariable); // NOLINT(concurrency-mt-unsafe)
    if (own && *own)
        return own;
    std::vector<std::string> served;
    std::error_code ignored;
    for (const std::string& folder : localFolders())
        for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
            const std::string name = entry.path().filename();
            if (name.rfind(kLocalPrefix, 0) == 0 && entry.path().extension() == kLocalSuffix) {
                const Orvane::FileDescriptor connection = connectLocal(entry.path());
                if (connection && isOurs(connection))
                    served.push_back(entry.path());
            }
        }
    if (served.size() == 1)
        return served.front();
    std::string problem = served.empty() ? "no lab is running here" : "several labs are running";
    for (const std::string& path : served)
        problem += "\n  " + path;
    throw std::runtime_error(problem + (served.empty() ? "; " : "\n") +
                             "name its socket with --control PATH");
}

std::string askControl(const std::string& path, const std::string& line, std::chrono::milliseconds limit) {
    Conversation lab(path, limit);
    lab.send(line + "\n");
    return lab.receiveLine();
}

} // namespace OrvaneSim
