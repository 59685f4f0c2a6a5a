// Texts from the network and from users: discovery replies, device names.
#include "fuzz/Input.h"
#include "ov_sys/Interface/discovery/BoardFinder.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"

#include <string>

namespace {

using namespace OrvaneFuzz;

std::string textOf(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

void parseReplies(Input input) {
    const std::string word = textOf(input.bytes(input.byte() % 16U));
    std::vector<Orvane::AddressResponse> replies;
    while (input.left() > 0)
        replies.emplace_back(textOf(input.bytes(input.byte())), "10.0.0." + std::to_string(replies.size()));
    std::vector<Orvane::AddressResponse*> found;
    Orvane::BoardFinder::handleReceivedData(word, replies, found);
    mustHold(replies.empty());
    for (const Orvane::AddressResponse* each : found) {
        mustHold(!each->name.empty());
        delete each;
    }
}

void parseDeviceName(const std::string& name) {
    std::string board;
    int port = 0;
    try {
        Orvane::HWIHelper::splitBoardSNPort(name, board, port);
        mustHold(name.size() > board.size() && name[board.size()] == ':');
    } catch (const Orvane::Exceptions::InvalidName&) {
    }
}

void splitText(Input input) {
    const std::string delimiter = textOf(input.bytes(1 + input.byte() % 3U));
    const std::string text = textOf(input.rest());
    for (const std::string& piece : Orvane::HWIHelper::split(text, delimiter))
        mustHold(!piece.empty() && text.find(piece) != std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    switch (input.byte() % 3U) {
    case 0:
        parseReplies(input);
        break;
    case 1:
        parseDeviceName(textOf(input.rest()));
        break;
    default:
        splitText(input);
    }
    return 0;
}
