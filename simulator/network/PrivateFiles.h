// System files replaced for this process only, in a mount namespace of its own.
#pragma once

#include <string>

namespace OrvaneSim {

// Shows `text` at `path` to this process and its children. The process must own its mount namespace, with
// private mounts. Throws std::system_error; nothing stays on disk.
void replaceFile(const std::string& path, const std::string& text);

// Makes name look-ups use /etc/hosts and DNS only: a name service reached over a local socket would carry
// questions out of the private network. Does nothing where /etc/nsswitch.conf is missing.
void resolveNamesLocally();

} // namespace OrvaneSim
