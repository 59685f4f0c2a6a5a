#include "ov_sys/Interface/foundation/Diagnostics.h"

namespace Orvane::Diagnostics {

void write(std::FILE* stream, const std::string& text) noexcept {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

} // namespace Orvane::Diagnostics
