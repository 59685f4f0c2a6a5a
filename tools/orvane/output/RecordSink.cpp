// The three forms of records.
#include "tools/orvane/output/RecordSink.h"

#include "tools/orvane/output/Csv.h"

#include <algorithm>

namespace OrvaneTool {
namespace {

std::vector<std::string> csvMembersOf(const RecordForm& form) {
    std::vector<std::string> all{"record", "device", "board", "port", "phy"};
    all.insert(all.end(), form.members.begin(), form.members.end());
    all.insert(all.end(), {"error.kind", "error.code", "error.text"});
    return all;
}

std::string asElement(std::string json) {
    for (std::size_t end = 0; (end = json.find('\n', end)) != std::string::npos; end += 3)
        json.insert(end + 1, "  ");
    return "  " + json;
}

// Names come from boards: what is not UTF-8 is replaced, not thrown about.
std::string textOfJson(const Record& record, int indent) {
    return visibleJson(record.json().dump(indent, ' ', false, nlohmann::json::error_handler_t::replace));
}

} // namespace

RecordSink::RecordSink(Stream& stream, Format format, RecordForm form, Pace pace)
    : stream_(stream),
      format_(format),
      form_(std::move(form)),
      pace_(pace),
      csvMembers_(csvMembersOf(form_)),
      table_(form_.columns) {}

Row RecordSink::rowOf(const Record& record) const {
    Row row;
    for (const Column& column : form_.columns) {
        const Cell* const cell = record.find(column.key);
        row.push_back(cell ? *cell : Cell(""));
    }
    return row;
}

void RecordSink::beginCsv() {
    if (!begun_)
        stream_.writeAsIs(csvLine(csvMembers_));
    begun_ = true;
}

void RecordSink::putJson(const Record& record) {
    if (pace_ == Pace::OneByOne)
        return stream_.writeAsIs(textOfJson(record, -1) + '\n');
    stream_.writeAsIs(begun_ ? ",\n" : "[\n");
    stream_.writeAsIs(asElement(textOfJson(record, 2)));
    begun_ = true;
}

void RecordSink::putCsv(const Record& record) {
    beginCsv();
    std::vector<std::string> fields;
    for (const std::string& name : csvMembers_) {
        const Cell* const cell = record.find(name);
        fields.push_back(cell && !cell->value.is_null() ? csvField(*cell) : "");
    }
    stream_.writeAsIs(csvLine(fields));
}

void RecordSink::put(const Record& record) {
    if (isText()) {
        if (pace_ == Pace::Together && !form_.columns.empty() && !record.isError())
            table_.add(rowOf(record));
        return;
    }
    format_ == Format::Json ? putJson(record) : putCsv(record);
    pace_ == Pace::OneByOne ? stream_.flush() : stream_.flushWhenFull();
}

void RecordSink::putAll(const Produce& produce) {
    if (!isText())
        return produce([this](const Record& record) { put(record); });
    printRows(stream_, form_.columns, [&](const auto& take) {
        produce([&](const Record& record) {
            if (!record.isError())
                take(rowOf(record));
        });
    });
}

void RecordSink::finish() {
    if (finished_)
        return;
    finished_ = true;
    if (isText())
        table_.print(stream_);
    else if (format_ == Format::Csv)
        beginCsv();
    else if (pace_ == Pace::Together)
        stream_.writeAsIs(begun_ ? "\n]\n" : "[]\n");
}

} // namespace OrvaneTool
