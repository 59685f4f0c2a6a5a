// A shell command as a process: with whose rights it runs, and its start.
#pragma once

#include <string>
#include <sys/types.h>

namespace OrvaneSim {

// Whoever reaches a board with a shell can run anything, so a shell never has the rights of root.
enum class ShellRights {
    Own,   // those of this process's user
    Nobody // none but everybody's: user and group 65534, no way back, an environment of PATH and HOME only
};

// Nobody's for root, else one's own. Root of a user namespace that knows no other user has no more rights
// than the ordinary user who made it, and keeps those; throws std::runtime_error when that user is root.
ShellRights shellRights();

// Runs `command` in /bin/sh, in a process group of its own, without input; output and errors go to two open
// descriptors. Returns its process, which the caller waits for; it ends with status 126 when the rights
// cannot be had or the shell not be run. Throws std::system_error when no process can be made.
pid_t startShell(const std::string& command, int output, int errors, ShellRights rights);

} // namespace OrvaneSim
