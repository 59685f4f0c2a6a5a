// The asking end of the control socket.
#include "simulator/control/ControlSocket.h"
#include "simulator/control/LocalSocket.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <sys/socket.h>

namespace OrvaneSim {

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

FileDescriptor connectLocal(const std::string& path) {
    const sockaddr_un place = localPlace(path);
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0)
        return {};
    return socket;
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
            if (name.rfind(kLocalPrefix, 0) == 0 && entry.path().extension() == kLocalSuffix &&
                connectLocal(entry.path()))
                served.push_back(entry.path());
        }
    if (served.size() == 1)
        return served.front();
    std::string problem = served.empty() ? "no lab is running here" : "several labs are running";
    for (const std::string& path : served)
        problem += "\n  " + path;
    throw std::runtime_error(problem + (served.empty() ? "; " : "\n") +
                             "name its socket with --control PATH");
}

std::string askControl(const std::string& path, const std::string& line) {
    const FileDescriptor socket = connectLocal(path);
    if (!socket)
        throw std::runtime_error("no lab answers at " + path + ": " + std::generic_category().message(errno));
    const std::string whole = line + "\n";
    if (::send(socket.get(), whole.data(), whole.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(whole.size()))
        throw std::runtime_error("the lab at " + path + " takes no request");
    std::string answer;
    std::array<char, 65536> room{};
    while (answer.empty() || answer.back() != '\n') {
        const ssize_t count = ::recv(socket.get(), room.data(), room.size(), 0);
        if (count <= 0)
            throw std::runtime_error("the lab at " + path + " gave no answer");
        answer.append(room.data(), static_cast<std::size_t>(count));
    }
    answer.pop_back();
    return answer;
}

} // namespace OrvaneSim
