// A page that needs nothing but a browser: its script, its styles and what it shows in one file.
#pragma once

#include <orvane/maps.hpp>
#include <ostream>
#include <string>
#include <string_view>

namespace OrvaneTool {

// JSON of a text; nothing in it can end the element that the page's data stand in. What is no UTF-8 is
// replaced.
std::string jsonText(std::string_view text);

// A JSON text made so, whatever stands in it.
std::string harmless(std::string json);

// Members of a register's object: ,"name":"PMA.ID1","fields":[...], most significant first.
void writeMeaning(std::ostream& page, const Orvane::MapRegister& reg);

// Writes the page around its parts. web/src/reported.ts says what a part has. One thread; `page` is its
// user's, who asks it whether it could be written.
class ReportPage {
public:
    // `title` is shown as it is.
    ReportPage(std::ostream& page, std::string_view title);

    // Begins a part: {"kind":"log","title":"...". Its further members, each behind a comma, and the closing
    // brace are to follow.
    std::ostream& part(std::string_view kind, std::string_view title);
    // Writes what is behind the last part.
    void finish();

private:
    std::ostream& page_;
    bool hasParts_ = false;
};

} // namespace OrvaneTool
