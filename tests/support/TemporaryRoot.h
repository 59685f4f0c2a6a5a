// Another root folder for this process, for code that reads files at fixed places.
#pragma once

#include <string>

namespace OrvaneTest {

// While one lives, the process sees nothing but an empty folder and the files that were put into it. Other
// threads of the process must open no files meanwhile. Throws std::system_error.
class TemporaryRoot {
public:
    TemporaryRoot();
    ~TemporaryRoot(); // puts the old root back and removes everything
    TemporaryRoot(const TemporaryRoot&) = delete;
    TemporaryRoot& operator=(const TemporaryRoot&) = delete;

    // Makes the file `folder`/`name` in the root.
    void addFile(const std::string& folder, const std::string& name, const std::string& text);

private:
    std::string place_;
    int formerRoot_;
    int formerFolder_;
};

} // namespace OrvaneTest
