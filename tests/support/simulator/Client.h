// A client of a simulated board that speaks through rpcgen's own stubs, without the library.
#pragma once

#include <orvane/lab.h>
#include <orvane/lab_json.h>

#include "adc.h"
#include "gpio.h"
#include "i2c.h"
#include "jtag.h"
#include "keepalive.h"
#include "mdio.h"
#include "portmap.h"
#include "setup.h"
#include "thermal.h"

#include <gtest/gtest.h>
#include <rpc/rpc.h>
#include <string>
#include <vector>

namespace OrvaneSim {

// One program of one board over one transport. Results are freed with the client's next call.
class Client {
public:
    Client(const Board& board, rpcprog_t program, const char* transport, rpcvers_t version = 1)
        : client_(clnt_create(board.address().c_str(), program, version, transport)) {
        if (!client_)
            throw std::runtime_error(clnt_spcreateerror("cannot reach the board"));
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() { clnt_destroy(client_); }

    void setTimeout(long milliseconds) {
        timeval limit{milliseconds / 1000, (milliseconds % 1000) * 1000};
        clnt_control(client_, CLSET_TIMEOUT, reinterpret_cast<char*>(&limit));
    }

    // Makes a call with a generated stub and tells its outcome. What XDR allocated in `result` is the
    // caller's.
    template <class Argument, class Result>
    clnt_stat call(clnt_stat (*stub)(Argument*, Result*, CLIENT*), Argument argument, Result& result) {
        result = Result{};
        return stub(&argument, &result, client_);
    }

    CLIENT* handle() { return client_; }

private:
    CLIENT* client_;
};

// Owns what XDR allocated in a result.
template <class Result>
class Decoded {
public:
    explicit Decoded(bool_t (*routine)(XDR*, Result*)) : routine_(routine) {}
    Decoded(const Decoded&) = delete;
    Decoded& operator=(const Decoded&) = delete;
    ~Decoded() { free(); }

    // An empty record to decode into.
    Result& fresh() {
        free();
        return result_;
    }
    Result* operator->() { return &result_; }

private:
    void free() {
        xdr_free(reinterpret_cast<xdrproc_t>(routine_), &result_);
        result_ = Result{};
    }
    bool_t (*routine_)(XDR*, Result*);
    Result result_{};
};

// Opens a session on a port and returns its identity word.
inline unsigned openSession(Client& setup, int device = 0, int phy = 0) {
    sim_Open_Param argument{};
    argument.simple = 1;
    argument.deviceIndex = device;
    argument.phyAddress = phy;
    sim_Open_Result result{};
    EXPECT_EQ(setup.call(sim_open_connection_1, argument, result), RPC_SUCCESS);
    EXPECT_EQ(result.error, 0);
    return (result.sequence << 8) | result.id;
}

// A lab with one board, and a session on its port 0, PHY 0.
class BoardWithClient : public testing::Test {
protected:
    Lab lab;
    Board& board = lab.add();
    Client setup{board, SIM_SETUP, "tcp"};
    unsigned identity = openSession(setup);

    template <class Element>
    static std::vector<unsigned> numbers(const Element* elements, u_int count) {
        std::vector<unsigned> list;
        for (u_int i = 0; i < count; ++i)
            list.push_back(static_cast<unsigned>(static_cast<std::make_unsigned_t<Element>>(elements[i])));
        return list;
    }
};

} // namespace OrvaneSim
