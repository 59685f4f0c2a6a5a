// Shows a decoded record as JSON, members in wire order.
#pragma once

#include "simulator/protocol/Records.h"

#include <nlohmann/json.hpp>
#include <string>
#include <type_traits>

namespace OrvaneSim {

template <class Record>
nlohmann::ordered_json toJson(Record& record);

/// Collects the members that it is shown into one JSON object. Characters become text, every other list an
/// array of numbers or objects.
class JsonVisitor {
public:
    template <class Number>
    void operator()(const char* name, Number number) {
        if constexpr (std::is_same_v<Number, char*>)
            object_[name] = std::string(number ? number : "");
        else
            object_[name] = number;
    }
    template <class Element>
    void list(const char* name, u_int count, Element* elements) {
        auto array = nlohmann::ordered_json::array();
        for (u_int i = 0; i < count; ++i) {
            if constexpr (std::is_arithmetic_v<Element>)
                array.push_back(elements[i]);
            else
                array.push_back(toJson(elements[i]));
        }
        object_[name] = std::move(array);
    }
    void bytes(const char* name, u_int count, const char* bytes) {
        auto array = nlohmann::ordered_json::array();
        for (u_int i = 0; i < count; ++i)
            array.push_back(static_cast<unsigned char>(bytes[i]));
        object_[name] = std::move(array);
    }
    void text(const char* name, u_int count, char* characters) {
        object_[name] = std::string(characters, count);
    }
    template <class Record>
    void record(const char* name, Record& record) {
        object_[name] = toJson(record);
    }

    nlohmann::ordered_json take() { return std::move(object_); }

private:
    nlohmann::ordered_json object_ = nlohmann::ordered_json::object();
};

template <class Record>
nlohmann::ordered_json toJson(Record& record) {
    JsonVisitor visitor;
    members(visitor, record);
    return visitor.take();
}

} // namespace OrvaneSim
