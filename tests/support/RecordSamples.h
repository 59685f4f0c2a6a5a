// One filled sample of every wire record, with the bytes that each of its members has on the wire.
#pragma once

#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "tests/support/rpc_protocol/WireBytes.h"

#include <cstring>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <typeindex>
#include <vector>

struct MemberSample {
    enum class Kind { Scalar, Text, List };
    Kind kind;
    std::size_t offset; // within the record, as is size
    std::size_t size;
    WireBytes bytes;
};

struct RecordSample {
    std::string name;
    std::type_index type;
    std::size_t size;
    void* filled; // lives as long as the sample
    std::function<bool_t(XDR*, void*)> run;
    std::function<void(void*)> freeDecoded;
    std::vector<MemberSample> members;
    std::vector<std::shared_ptr<void>> storage;

    WireBytes bytes() const {
        WireBytes all;
        for (const MemberSample& member : members)
            append(all, member.bytes);
        return all;
    }
};

// Fills a record member by member, in wire order.
class MemberWriter {
public:
    MemberWriter(RecordSample& sample, void* record) : sample_(sample), record_(static_cast<char*>(record)) {}

    template <class Scalar, class Value>
    void value(Scalar& member, Value content, const char* hex) {
        member = static_cast<Scalar>(content);
        note(MemberSample::Kind::Scalar, &member, sizeof member, hex);
    }

    void text(char*& member, const char* content, const char* hex) {
        member = keepText(content);
        note(MemberSample::Kind::Text, &member, sizeof member, hex);
    }

    // Counted arrays and opaque data.
    template <class Counted>
    void list(Counted& member, std::initializer_list<unsigned> content, const char* hex) {
        auto& [count, values] = member;
        using Element = std::remove_pointer_t<std::remove_reference_t<decltype(values)>>;
        count = static_cast<u_int>(content.size());
        values = keep<Element>(content.size());
        Element* next = values;
        for (const unsigned element : content)
            *next++ = static_cast<Element>(element);
        note(MemberSample::Kind::List, &member, sizeof member, hex);
    }

    // Lists of strings, each with its length.
    template <class Counted>
    void strings(Counted& member, std::initializer_list<const char*> content, const char* hex) {
        auto& [count, values] = member;
        count = static_cast<u_int>(content.size());
        values = keep<StringArrayEntry>(content.size());
        StringArrayEntry* next = values;
        for (const char* element : content)
            *next++ = {keepText(element), static_cast<u_int>(std::strlen(element))};
        note(MemberSample::Kind::List, &member, sizeof member, hex);
    }

private:
    template <class Element>
    Element* keep(std::size_t count) {
        const std::shared_ptr<Element> memory(new Element[count](), std::default_delete<Element[]>());
        sample_.storage.push_back(memory);
        return memory.get();
    }

    char* keepText(const char* content) {
        const std::size_t size = std::strlen(content) + 1;
        char* const copy = keep<char>(size);
        std::memcpy(copy, content, size);
        return copy;
    }

    void note(MemberSample::Kind kind, const void* member, std::size_t size, const char* hex) {
        const auto offset = static_cast<std::size_t>(static_cast<const char*>(member) - record_);
        sample_.members.push_back({kind, offset, size, wire(hex)});
    }

    RecordSample& sample_;
    char* record_;
};

// Every wire record once.
const std::vector<RecordSample>& recordSamples();

// The sample of one record type.
template <class Record>
const RecordSample& sampleOf() {
    for (const RecordSample& sample : recordSamples())
        if (sample.type == std::type_index(typeid(Record)))
            return sample;
    throw std::out_of_range("no sample of this record");
}

// A copy of the filled record; its pointers are the sample's.
template <class Record>
Record filled() {
    return *static_cast<const Record*>(sampleOf<Record>().filled);
}
