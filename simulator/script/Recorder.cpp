// Requests as lines of JSON.
#include "simulator/script/Recorder.h"

#include "simulator/script/JsonReader.h"

#include <chrono>
#include <fstream>
#include <memory>

namespace OrvaneSim {
namespace {

// The file and the time of its beginning. Written on the lab's thread only.
struct Recording {
    std::ofstream file;
    std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();

    void write(const std::string& serial, const Request& request) {
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
        const Json head{{"seconds", elapsed.count()},     {"board", serial},
                        {"program", request.program},     {"procedure", request.procedure},
                        {"transport", request.transport}, {"programNumber", request.programNumber},
                        {"version", request.version},     {"procedureNumber", request.procedureNumber}};
        std::string line = head.dump(-1, ' ', false, Json::error_handler_t::replace);
        line.pop_back(); // the arguments go in front of the closing brace
        file << line << R"(,"arguments":)" << request.arguments() << "}\n" << std::flush;
    }
};

} // namespace

void recordRequests(Lab& lab, const std::string& file) {
    const auto recording = std::make_shared<Recording>();
    recording->file.open(file, std::ios::trunc);
    if (!recording->file)
        throw ScriptError(file, "cannot be written");
    for (Board* board : lab.boards())
        board->onRequest([recording, serial = board->serial()](const Request& request) {
            recording->write(serial, request);
        });
}

} // namespace OrvaneSim
