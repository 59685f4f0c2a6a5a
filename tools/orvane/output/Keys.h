// Keys that are pressed while something is shown.
#pragma once

#include <chrono>
#include <string>

namespace OrvaneTool {

enum class Key { None, Up, Down, PageUp, PageDown, Home, End, Quit };

// Reads the terminal on standard input key by key while it lives; does nothing where that is no terminal, or
// keys are not wanted. At most one at a time; one thread.
class Keys {
public:
    explicit Keys(bool wanted);
    ~Keys();
    Keys(const Keys&) = delete;
    Keys& operator=(const Keys&) = delete;

    bool available() const { return available_; }
    // Blocks for a key, for `wake` to become readable, or for the time.
    Key wait(std::chrono::milliseconds time, int wake);

private:
    Key next();

    bool available_;
    std::string typed_; // and not yet taken
};

// Gives the terminal back to line by line, if it is not. Any thread; for ends of the process that run no
// destructors.
void restoreTerminal() noexcept;

} // namespace OrvaneTool
