// Alters a finished reply in the way that a fault asks for.
#pragma once

#include "simulator/board/ProcedureCall.h"
#include "simulator/protocol/Records.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace OrvaneSim {

// Puts a status into a reply, or a value into a bare number.
class StatusSetter {
public:
    explicit StatusSetter(int status) : status_(status) {}
    template <class Number>
    void operator()(const char* name, Number& number) {
        if constexpr (std::is_same_v<Number, int>)
            if (std::string_view(name) == "error")
                number = status_;
    }
    template <class Element>
    void list(const char*, u_int&, Element*&) {}
    void bytes(const char*, u_int&, char*&) {}
    void text(const char*, u_int&, char*&) {}

private:
    int status_;
};

// Replaces the first plain word beside the status.
class WordSetter {
public:
    explicit WordSetter(std::int64_t word) : word_(word) {}
    template <class Number>
    void operator()(const char* name, Number& number) {
        if constexpr (std::is_integral_v<Number>)
            if (!done_ && std::string_view(name) != "error") {
                number = static_cast<Number>(word_);
                done_ = true;
            }
    }
    template <class Element>
    void list(const char*, u_int&, Element*&) {}
    void bytes(const char*, u_int&, char*&) {}
    void text(const char*, u_int&, char*&) {}

private:
    std::int64_t word_;
    bool done_ = false;
};

// Cuts every list to a length or fills it up with bytes 0xEE.
class CountSetter {
public:
    CountSetter(const ProcedureCall& call, std::size_t count) : call_(call), count_(count) {}
    template <class Number>
    void operator()(const char*, Number&) {}
    template <class Element>
    void list(const char*, u_int& count, Element*& elements) {
        auto* resized = call_.allocate<Element>(count_);
        for (std::size_t i = 0; i < count_; ++i)
            resized[i] = i < count ? elements[i] : filling<Element>();
        elements = resized;
        count = static_cast<u_int>(count_);
    }
    void bytes(const char* name, u_int& count, char*& bytes) { list(name, count, bytes); }
    void text(const char* name, u_int& count, char*& characters) { list(name, count, characters); }

private:
    template <class Element>
    Element filling() const {
        Element element{};
        if constexpr (std::is_same_v<Element, sim_StringArrayEntry>) {
            element.text = call_.allocate<char>(2);
            element.text[0] = static_cast<char>(0xEE);
            element.length = 1;
        } else {
            std::memset(&element, 0xEE, sizeof element);
        }
        return element;
    }

    const ProcedureCall& call_;
    std::size_t count_;
};

// Makes `result` the answer of a procedure that failed with `status`.
template <class Result>
void setStatus(Result& result, std::int64_t status) {
    if constexpr (std::is_arithmetic_v<Result>) {
        result = static_cast<Result>(status);
    } else {
        StatusSetter setter(static_cast<int>(status));
        members(setter, result);
    }
}

template <class Result>
void setFirstWord(Result& result, std::int64_t word) {
    WordSetter setter(word);
    members(setter, result);
}

template <class Result>
void setCounts(const ProcedureCall& call, Result& result, std::int64_t count) {
    CountSetter setter(call, static_cast<std::size_t>(std::clamp<std::int64_t>(count, 0, SIM_LIST_LIMIT)));
    members(setter, result);
}

} // namespace OrvaneSim
