// Runs the real program and keeps what it wrote.
#pragma once

#include "simulator/lab/Lab.h"

#include <map>
#include <ostream>
#include <string>
#include <sys/types.h>
#include <vector>

namespace OrvaneTest {

using Arguments = std::vector<std::string>;
using Environment = std::map<std::string, std::string>;

// How a run ended.
struct Outcome {
    int status = -1; // the exit status, 128 + signal after a signal
    std::string output;
    std::string error;
};
bool operator==(const Outcome& left, const Outcome& right);
std::ostream& operator<<(std::ostream& stream, const Outcome& outcome);

// A running program. The environment of the test goes on in it, without what changes its ways (NO_COLOR,
// ORVANE_ADDRESS and the session keys), and with what is given.
class Program {
public:
    enum class Streams {
        Kept,     // into memory
        Terminal, // output, error and input are one terminal, 100 columns wide
        Narrow    // the same, 60 columns wide
    };
    explicit Program(const Arguments& arguments, const Environment& environment = {},
                     Streams streams = Streams::Kept);
    ~Program(); // kills it when it still runs
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void signal(int number) const;
    // Presses keys, on a terminal.
    void type(const std::string& keys) const;
    // Blocks until that much of its output is there; throws std::runtime_error after 10 s. Not on a terminal.
    void waitForOutput(const std::string& text) const;
    // Waits for its end. On a terminal `output` has everything.
    Outcome finish();

private:
    std::string terminalText() const;

    pid_t process_ = -1;
    int output_ = -1; // or the terminal's other side
    int error_ = -1;
};

// Runs the program to its end.
Outcome orvane(const Arguments& arguments, const Environment& environment = {});
Outcome orvaneOnTerminal(const Arguments& arguments, const Environment& environment = {});

// What a shell command prints. ORVANE_TOOL is the program's path in it.
std::string shellOutput(const std::string& command);

// The outcomes of a success and of a failure.
Outcome prints(const std::string& output);
Outcome fails(int status, const std::string& error, const std::string& output = "");

// A lab with board OV0001, whose address the program is told.
struct OneBoardLab {
    OrvaneSim::Lab lab;
    OrvaneSim::Board& board;

    OneBoardLab();
    // Runs the program with the board's address.
    Outcome run(const Arguments& arguments) const;
    Environment environment() const;
};

// An empty folder that is removed in the end.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path(const std::string& name) const { return path_ + "/" + name; }
    std::string write(const std::string& name, const std::string& text) const; // gives the path
    std::string content(const std::string& name) const;
    bool has(const std::string& name) const;

private:
    std::string path_;
};

} // namespace OrvaneTest
