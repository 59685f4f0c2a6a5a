// Shows a decoded record as JSON text, members in wire order.
#pragma once

#include "simulator/protocol/JsonText.h"
#include "simulator/protocol/Records.h"

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace OrvaneSim {

// Writes the members that it is shown as one JSON object. Characters become text, every other list an array
// of numbers or objects.
class RecordWriter {
public:
    template <class Number>
    void operator()(const char* name, Number number) {
        key(name);
        value(number);
    }
    template <class Element>
    void list(const char* name, u_int count, Element* elements) {
        key(name);
        array(count, [&](u_int i) { value(elements[i]); });
    }
    void bytes(const char* name, u_int count, const char* bytes) {
        key(name);
        array(count, [&](u_int i) { appendJson(json_, static_cast<unsigned char>(bytes[i])); });
    }
    void text(const char* name, u_int count, const char* characters) {
        key(name);
        appendJson(json_, std::string_view(characters, count));
    }
    template <class Record>
    void record(const char* name, Record& record) {
        key(name);
        value(record);
    }

    // The object; the writer is then done.
    std::string take() {
        json_ += json_.empty() ? "{}" : "}";
        return std::move(json_);
    }

private:
    void key(const char* name) {
        json_ += json_.empty() ? '{' : ',';
        appendJson(json_, std::string_view(name));
        json_ += ':';
    }
    template <class Value>
    void value(Value& value) {
        if constexpr (std::is_same_v<Value, char*>)
            appendJson(json_, std::string_view(value ? value : ""));
        else if constexpr (std::is_arithmetic_v<Value>)
            appendJson(json_, value);
        else {
            RecordWriter inner;
            members(inner, value);
            json_ += inner.take();
        }
    }
    template <class Write>
    void array(u_int count, Write write) {
        json_ += '[';
        for (u_int i = 0; i < count; ++i) {
            if (i > 0)
                json_ += ',';
            write(i);
        }
        json_ += ']';
    }

    std::string json_;
};

template <class Record>
std::string jsonText(Record& record) {
    RecordWriter writer;
    members(writer, record);
    return writer.take();
}

} // namespace OrvaneSim
