// Commands as a user types them, and a folder for what they write.
#pragma once

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/wait.h>

namespace OrvaneSim {

// Output (both streams) and exit status of a shell command.
struct Outcome {
    std::string output;
    int status;
};

inline Outcome shell(const std::string& command) {
    FILE* pipe = ::popen(("exec 2>&1\nPATH=$PATH:/usr/sbin\n" + command).c_str(), "r");
    std::string output;
    std::array<char, 4096> room;
    while (const std::size_t count = std::fread(room.data(), 1, room.size(), pipe))
        output.append(room.data(), count);
    const int status = ::pclose(pipe);
    return {output, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

// A folder that goes with the object, and everything in it.
class ScratchFolder {
public:
    ScratchFolder() {
        if (!::mkdtemp(path_.data()))
            throw std::runtime_error("cannot make a folder");
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string file(const std::string& name) const { return path_ + "/" + name; }
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(file(name)) << text;
        return file(name);
    }
    std::string read(const std::string& name) const {
        std::ifstream stream(file(name));
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    std::string path_ = "/tmp/orvane-test-XXXXXX";
};

} // namespace OrvaneSim
