// Byte strings as the tests write them, and XDR streams over them.
#pragma once

#include <cctype>
#include <rpc/rpc.h>
#include <string>
#include <vector>

using WireBytes = std::vector<unsigned char>;

// The bytes that pairs of hexadecimal digits stand for; blanks are for the reader.
inline WireBytes wire(const std::string& hex) {
    std::string digits;
    for (const char c : hex)
        if (std::isxdigit(static_cast<unsigned char>(c)))
            digits += c;
    WireBytes bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

inline void append(WireBytes& bytes, const WireBytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

inline void appendWord(WireBytes& bytes, unsigned word) {
    for (const unsigned shift : {24u, 16u, 8u, 0u})
        bytes.push_back(static_cast<unsigned char>(word >> shift));
}

inline unsigned wordAt(const WireBytes& bytes, std::size_t offset) {
    unsigned word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word = word << 8 | bytes.at(offset + i);
    return word;
}

// Takes from a stream either its inline buffer or its single words. Must outlive the stream.
class Refusal {
public:
    void ofInline(XDR* stream) {
        operations_ = *stream->x_ops;
        operations_.x_inline = [](XDR*, u_int length) -> int32_t* {
            lengthsAsked().push_back(length);
            return nullptr;
        };
        stream->x_ops = &operations_;
        lengthsAsked().clear();
    }

    void ofWords(XDR* stream) {
        operations_ = *stream->x_ops;
        operations_.x_getlong = [](XDR*, long*) -> bool_t { return FALSE; };
        operations_.x_putlong = [](XDR*, const long*) -> bool_t { return FALSE; };
        stream->x_ops = &operations_;
    }

    // The inline lengths asked for since the last ofInline().
    static std::vector<u_int>& lengthsAsked() {
        static std::vector<u_int> lengths;
        return lengths;
    }

private:
    XDR::xdr_ops operations_{};
};

// A memory stream that decodes from `bytes`, which must outlive it.
class DecodeStream {
public:
    explicit DecodeStream(WireBytes& bytes) {
        xdrmem_create(&stream_, reinterpret_cast<char*>(bytes.data()), static_cast<u_int>(bytes.size()),
                      XDR_DECODE);
    }
    ~DecodeStream() { XDR_DESTROY(&stream_); }
    DecodeStream(const DecodeStream&) = delete;
    DecodeStream& operator=(const DecodeStream&) = delete;

    XDR* get() { return &stream_; }
    std::size_t consumed() { return XDR_GETPOS(&stream_); }

private:
    XDR stream_{};
};

// A memory stream that encodes into `room` bytes.
class EncodeStream {
public:
    explicit EncodeStream(std::size_t room = 1 << 20) : buffer_(room) {
        xdrmem_create(&stream_, reinterpret_cast<char*>(buffer_.data()), static_cast<u_int>(room),
                      XDR_ENCODE);
    }
    ~EncodeStream() { XDR_DESTROY(&stream_); }
    EncodeStream(const EncodeStream&) = delete;
    EncodeStream& operator=(const EncodeStream&) = delete;

    XDR* get() { return &stream_; }
    WireBytes bytes() { return {buffer_.begin(), buffer_.begin() + static_cast<long>(XDR_GETPOS(&stream_))}; }

private:
    WireBytes buffer_;
    XDR stream_{};
};
