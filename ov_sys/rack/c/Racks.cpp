// Racks and their boards, for C.
#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"
#include "ov_sys/rack/c/Values.h"

#include <chrono>
#include <memory>

using namespace Orvane::RackC;

extern "C" {

int orvane_rack_new(orvane_rack** rack, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack});
        *rack = new orvane_rack;
    });
}

void orvane_rack_free(orvane_rack* rack) {
    delete rack;
}

int orvane_rack_know(orvane_rack* rack, const char* board, const char* address, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, board, address});
        rack->rack.know(board, address);
    });
}

int orvane_rack_discover(orvane_rack* rack, const orvane_limits* limits, orvane_board_list** boards,
                         orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, boards});
        auto list = std::make_unique<orvane_board_list>();
        list->found = rack->rack.discover(withinOf(limits, Orvane::within(std::chrono::seconds(1))));
        for (const Orvane::FoundBoard& one : list->found.boards)
            list->boards.push_back(
                {one.serial.c_str(), one.address.c_str(), one.ports.data(), one.ports.size()});
        *boards = list.release();
    });
}

size_t orvane_board_list_size(const orvane_board_list* boards) {
    return boards == nullptr ? 0 : boards->boards.size();
}

size_t orvane_board_list_malformed(const orvane_board_list* boards) {
    return boards == nullptr ? 0 : boards->found.malformed;
}

const orvane_board* orvane_board_list_at(const orvane_board_list* boards, size_t index) {
    return index < orvane_board_list_size(boards) ? &boards->boards[index] : nullptr;
}

void orvane_board_list_free(orvane_board_list* boards) {
    delete boards;
}

} // extern "C"
