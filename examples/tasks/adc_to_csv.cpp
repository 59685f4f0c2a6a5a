// Captures samples of an ADC channel and writes them to a CSV file: adc_to_csv [FILE].
#include <cstdio>
#include <exception>
#include <fstream>
#include <orvane/orvane.hpp>
#include <vector>

int main(int argc, char** argv) {
    constexpr int samples = 16;
    constexpr unsigned channel0 = 1U << 0U;
    try {
        Orvane::HWInterface boards;
        if (!boards.open("OV0001:0"))
            throw Orvane::Exceptions::NoDevice();
        const Orvane::SessionWrapper session(boards.getPhySession("OV0001:0", 3));
        Orvane::ADC::ADC adc;
        adc.initialize(session);
        adc.setChannelMask(session, channel0);
        adc.start(session);
        const std::vector<unsigned char> data = adc.getData(session, samples);
        adc.stop(session);

        const char* path = argc > 1 ? argv[1] : "adc.csv";
        std::ofstream file(path);
        file << "sample,value\n";
        for (std::size_t i = 0; i < data.size(); ++i)
            file << i << ',' << unsigned{data[i]} << '\n';
        file.close();
        std::printf("%zu samples, %s\n", data.size(), file ? "written" : "not written");
        return file && data.size() == samples ? 0 : 1;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
