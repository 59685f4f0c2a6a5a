// The forms of times and temperatures.
#include "tools/orvane/output/Units.h"

#include <cmath>
#include <ctime>

namespace OrvaneTool {

std::string timeText(std::chrono::system_clock::time_point time) {
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const std::time_t seconds = milliseconds / 1000;
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", utc.tm_year + 1900, utc.tm_mon + 1,
                       utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, milliseconds % 1000);
}

Cell celsiusCell(double celsius) {
    return {fmt::format("{:.2f}", celsius), std::round(celsius * 100) / 100};
}

} // namespace OrvaneTool
