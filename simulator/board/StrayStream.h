// Sends stray datagrams at a steady pace.
#pragma once

#include "simulator/board/Dice.h"
#include "simulator/board/StrayDatagrams.h"
#include "simulator/engine/EventLoop.h"
#include "simulator/engine/RpcServer.h"

#include <cstdint>
#include <string>

namespace OrvaneSim {

// One stream, from its making until its count is reached or it goes. Before the server has seen a client it
// waits. Belongs to the loop's thread.
class StrayStream {
public:
    // The three references must outlive the stream; `sent` is counted up.
    StrayStream(EventLoop& loop, RpcServer& server, std::uint64_t& sent, const StrayDatagrams& what,
                Dice dice);

private:
    void tick();
    void sendOne(const sockaddr_in& peer);
    std::string reply(std::uint32_t transaction);

    EventLoop& loop_;
    RpcServer& server_;
    std::uint64_t& sent_;
    StrayDatagrams what_;
    Dice dice_;
    unsigned left_;
    unsigned turn_ = 0;
    EventLoop::Life life_ = EventLoop::makeLife();
};

} // namespace OrvaneSim
