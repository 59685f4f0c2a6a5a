// Files of other kinds, told by what they begin with.
#include "ov_sys/maps/Draft.h"
#include "ov_sys/maps/Loader.h"

namespace Orvane {

namespace {

// The name of the first element of an XML text; empty: there is none.
std::string_view rootOf(std::string_view text) {
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
        const std::string_view name = text.substr(at + 1);
        if (name.empty() || (name[0] != '?' && name[0] != '!'))
            return name.substr(0, name.find_first_of(" \t\r\n>/"));
    }
    return {};
}

} // namespace

ImportedMap RegisterMap::importFile(const std::string& path, const ImportOptions& options) {
    Maps::Problems problems;
    auto text = Maps::readFile(path, Maps::JsonBudget{}.bytes, problems);
    problems.throwIfAny();
    const auto refuse = [&](const char* why) { throw MapError(std::vector<MapProblem>{{path, 0, {}, why}}); };
    if (options.addressUnit > 8 || options.mmd > 31)
        refuse("cannot be imported so: an address counts 8 bytes at most, and MMDs end at 31");
    const std::size_t first = text->find_first_not_of("\xEF\xBB\xBF \t\r\n");
    const char begin = first == std::string::npos ? '\0' : (*text)[first];
    if (begin == '{')
        refuse("is a map already: load it");
    Maps::Draft draft(path, options);
    if (begin != '<')
        return Maps::importCsv(std::move(*text), std::move(draft));
    const std::string_view root = rootOf(*text);
    if (root == "device")
        return Maps::importSvd(std::move(*text), std::move(draft));
    if (root != "node")
        refuse("is neither CMSIS-SVD nor an address table of uHAL");
    return Maps::importUhal(std::move(*text), std::move(draft));
}

} // namespace Orvane
