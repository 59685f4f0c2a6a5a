// Where a verb's records go: a table, JSON or CSV, as the user chose.
#pragma once

#include "tools/orvane/output/Record.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvaneTool {

enum class Format { Text, Json, Csv };

// What is shown of a verb's records beside JSON, which has all of them.
struct RecordForm {
    std::vector<std::string> members; // in CSV, between those of every record
    std::vector<Column> columns;      // in the text table, by names of members; none: the verb prints text
};

enum class Pace {
    Together, // a table; one JSON array
    OneByOne  // at once, each in a JSON line of its own; text is the verb's own
};

// Takes records until finish(). CSV begins with record, device, board, port and phy, and ends with
// error.kind, error.code and error.text. One thread.
class RecordSink {
public:
    // The stream must outlive it.
    RecordSink(Stream& stream, Format format, RecordForm form, Pace pace = Pace::Together);

    // Whether records are seen by people, who need no record of what the verb tells them in words.
    bool isText() const { return format_ == Format::Text; }

    // Throws what flush() of the stream throws.
    void put(const Record& record);
    // Records of any number, none of them kept: `produce` gives them one by one to what it is called with,
    // and is called twice for text, once to see how wide they are. Nothing else may be put before.
    using Produce = std::function<void(const std::function<void(const Record&)>& take)>;
    void putAll(const Produce& produce);

    // Prints the table, or ends the array. Only the first call does anything; nothing is put afterwards.
    void finish();

private:
    Row rowOf(const Record& record) const;
    void putJson(const Record& record);
    void putCsv(const Record& record);
    void beginCsv();

    Stream& stream_;
    Format format_;
    RecordForm form_;
    Pace pace_;
    std::vector<std::string> csvMembers_;
    Table table_;
    bool begun_ = false;
    bool finished_ = false;
};

} // namespace OrvaneTool
