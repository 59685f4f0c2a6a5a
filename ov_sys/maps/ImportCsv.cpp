// CSV tables: one line a register or a field, a first line that names the columns.
#include "ov_sys/Interface/foundation/Utf8.h"
#include "ov_sys/maps/Draft.h"
#include "ov_sys/maps/FieldForm.h"
#include "ov_sys/maps/Numbers.h"
#include "ov_sys/maps/PlaceForm.h"
#include "ov_sys/maps/Problems.h"

#include <algorithm>

namespace Orvane::Maps {

namespace {

using Row = std::vector<std::string>;

constexpr std::string_view kColumns[] = {"register", "address", "width", "reset", "access",
                                         "field",    "bits",    "text",  "values"};
constexpr std::size_t kMostColumns = 64;

// Takes rows off a text: cells between commas, in quotes where they hold commas, quotes ("" for one) or line
// ends.
class Table {
public:
    explicit Table(std::string text) : text_(std::move(text)) {}

    // False at the end.
    bool next(Row& row) {
        row.assign(1, {});
        if (at_ >= text_.size())
            return false;
        line_ = nextLine_;
        bool isQuoted = false;
        for (; at_ < text_.size(); ++at_) {
            const char c = text_[at_];
            nextLine_ += c == '\n' ? 1 : 0;
            if (c == '"' && isQuoted && text_[at_ + 1] == '"') // a string ends with a zero
                row.back() += text_[++at_];
            else if (c == '"')
                isQuoted = !isQuoted;
            else if (isQuoted || (c != ',' && c != '\n' && c != '\r'))
                row.back() += c;
            else if (c == ',' && row.size() < kMostColumns)
                row.emplace_back();
            else if (c == '\n')
                break;
        }
        ++at_;
        return true;
    }
    unsigned line() const { return line_; }

private:
    std::string text_;
    std::size_t at_ = 0;
    unsigned line_ = 1;
    unsigned nextLine_ = 1;
};

class Csv {
public:
    Csv(std::string text, Draft& draft) : table_(std::move(text)), draft_(draft) {}

    void read() {
        Row row;
        table_.next(row);
        readHead(row);
        while (table_.next(row))
            if (row.size() > 1 || !row[0].empty())
                readRow(row);
        flush();
    }

private:
    void readHead(const Row& head) {
        for (std::size_t i = 0; i < head.size(); ++i)
            if (std::find(std::begin(kColumns), std::end(kColumns), head[i]) == std::end(kColumns))
                draft_.ignore("column " + head[i]);
            else
                columns_[head[i]] = i;
        if (columns_.count("register") == 0 || columns_.count("address") == 0)
            throw MapError(std::vector<MapProblem>{
                {draft_.file(),
                 1,
                 {},
                 "is no table of registers: the first line has to name the columns 'register' and "
                 "'address'"}});
    }

    const std::string& cell(const Row& row, std::string_view column) const {
        const auto found = columns_.find(column);
        return found == columns_.end() || found->second >= row.size() ? nothing_ : row[found->second];
    }

    // A row with a field adds to the register of its name; one without begins a register.
    void readRow(const Row& row) {
        const std::string& name = cell(row, "register");
        if (cell(row, "field").empty() || (!name.empty() && name != current_)) {
            flush();
            beginRegister(row);
        }
        if (!cell(row, "field").empty() && isOpen_)
            addField(row);
    }

    void flush() {
        if (isOpen_)
            draft_.add(std::move(open_));
        isOpen_ = false;
    }

    void beginRegister(const Row& row) {
        current_ = cell(row, "register");
        const auto place = placeIn(cell(row, "address"));
        if (!place || place->isRelative) {
            draft_.report(table_.line(), current_,
                          "'" + printable(cell(row, "address")) + "' is no address; left out");
            return;
        }
        open_ = DraftRegister{};
        open_.line = table_.line();
        open_.address = place->address;
        splitName(current_);
        const bool isField = !cell(row, "field").empty();
        open_.text = isField ? "" : cell(row, "text");
        open_.access = isField ? MapAccess::rw : accessIn(row, MapAccess::rw);
        const auto width = numberIn(cell(row, "width"));
        const bool isUsual = width && (*width == 8 || *width == 16 || *width == 32 || *width == 64);
        open_.width = isUsual                                   ? static_cast<unsigned>(*width)
                      : place->address.space == MapSpace::ext32 ? 32
                                                                : 16;
        open_.reset = numberIn(cell(row, "reset"));
        isOpen_ = true;
    }

    void splitName(std::string_view name) {
        for (std::size_t dot = name.find('.'); dot != std::string_view::npos && open_.path.size() < 8;
             dot = name.find('.')) {
            open_.path.push_back(identifierOf(name.substr(0, dot)));
            name.remove_prefix(dot + 1);
        }
        open_.name = name;
    }

    MapAccess accessIn(const Row& row, MapAccess usual) {
        const std::string& word = cell(row, "access");
        const auto access = accessOf(word);
        if (!access && !word.empty())
            draft_.report(table_.line(), current_, "'" + printable(word) + "' is no access");
        return access.value_or(usual);
    }

    void addField(const Row& row) {
        MapField form;
        const std::string problem = takeBits(cell(row, "bits"), form);
        DraftField field;
        field.name = cell(row, "field");
        field.text = cell(row, "text");
        field.bits = form.bits;
        field.access = accessIn(row, open_.access);
        if (!problem.empty())
            draft_.report(table_.line(), current_ + '.' + field.name, problem + "; left out");
        else {
            field.choices = choicesIn(cell(row, "values"), form.width, field.name);
            open_.fields.push_back(std::move(field));
        }
    }

    // "0=off;1=on".
    std::vector<MapChoice> choicesIn(std::string_view text, unsigned width, const std::string& field) {
        std::map<std::uint64_t, std::string> byValue;
        while (!text.empty()) {
            const std::string_view one = text.substr(0, text.find(';'));
            text.remove_prefix(std::min(text.size(), one.size() + 1));
            const std::size_t equals = one.find('=');
            const auto value = numberIn(one.substr(0, equals));
            const std::string name(equals == std::string_view::npos ? "" : one.substr(equals + 1, 200));
            if (!value || *value > lowBits(width) || name.empty() || !isUtf8(name) ||
                !byValue.emplace(*value, name).second)
                draft_.report(table_.line(), current_ + '.' + field,
                              "'" + printable(one) + "' is no value of it; left out");
        }
        return distinct(byValue);
    }

    static std::vector<MapChoice> distinct(const std::map<std::uint64_t, std::string>& byValue) {
        std::vector<MapChoice> choices;
        std::set<std::string> names;
        for (const auto& [value, name] : byValue)
            choices.push_back({value, names.insert(name).second ? name : name + ' ' + std::to_string(value)});
        return choices;
    }

    Table table_;
    Draft& draft_;
    const std::string nothing_;
    std::map<std::string, std::size_t, std::less<>> columns_;
    std::string current_;
    DraftRegister open_;
    bool isOpen_ = false;
};

} // namespace

ImportedMap importCsv(std::string text, Draft draft) {
    Csv(std::move(text), draft).read();
    return draft.finish("imported", "");
}

} // namespace Orvane::Maps
