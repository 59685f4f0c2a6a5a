// Encoding a request of 873 addresses, by the library's routine and by libtirpc's word by word.
#include "ov_sys/Interface/rpc_protocol/Codec.h"

#include <benchmark/benchmark.h>
#include <vector>

namespace {

constexpr u_int kWords = 873;

template <class Encode>
void encodeRepeatedly(benchmark::State& state, Encode encode) {
    std::vector<u_int> words(kWords, 0x03010020);
    alignas(4) static char buffer[8800];
    for (auto _ : state) {
        XDR stream;
        xdrmem_create(&stream, buffer, sizeof buffer, XDR_ENCODE);
        if (!encode(&stream, words))
            state.SkipWithError("not encoded");
        benchmark::ClobberMemory();
    }
}

void bareListOfWords(benchmark::State& state) {
    encodeRepeatedly(state, [](XDR* stream, std::vector<u_int>& words) {
        u_int handle = 7;
        u_int count = kWords;
        char* list = reinterpret_cast<char*>(words.data());
        return xdr_u_int(stream, &handle) &&
               xdr_array(stream, &list, &count, kWords, sizeof(u_int), Orvane::xdrProcedure<u_int>);
    });
}
BENCHMARK(bareListOfWords);

void listOfWords(benchmark::State& state) {
    encodeRepeatedly(state, [](XDR* stream, std::vector<u_int>& words) {
        MDIO_Read_Param param{7, {kWords, words.data()}};
        return xdr_MDIO_Read_Param(stream, &param);
    });
}
BENCHMARK(listOfWords);

} // namespace
