// Requests of the control socket.
#include "simulator/control/LabControl.h"

#include "simulator/script/ActionText.h"
#include "simulator/script/Snapshot.h"

#include <algorithm>
#include <functional>

namespace OrvaneSim {
namespace {

using Boards = std::vector<Board*>;

constexpr std::int64_t kNewest = 20; // requests shown unless told otherwise
constexpr std::int64_t kMostRequests = 100000;

struct Query {
    QueryForm form;
    std::function<Json(const Boards&, ObjectReader&)> perform;
};

Json list(const Boards& boards, ObjectReader&) {
    Json rows = Json::array();
    for (const Board* board : boards)
        rows.push_back({{"board", board->serial()},
                        {"address", board->address()},
                        {"name", board->nameLine()},
                        {"sessions", board->sessionCount()},
                        {"faults", board->faults().size()}});
    return rows;
}

Json counts(const Boards& boards, ObjectReader& request) {
    const std::string wanted = request.text("procedure", "");
    Json rows = Json::array();
    for (const Board* board : boards)
        for (const auto& [procedure, counted] : board->counts())
            if (wanted.empty() || wanted == procedure)
                rows.push_back({{"board", board->serial()},
                                {"procedure", procedure},
                                {"received", counted.received},
                                {"executed", counted.executed},
                                {"faults", counted.faults},
                                {"lostRequests", counted.lostRequests},
                                {"lostReplies", counted.lostReplies}});
    return rows;
}

Json rowOf(const Board& board, const Request& asked) {
    return {{"board", board.serial()},
            {"program", asked.program},
            {"procedure", asked.procedure},
            {"transport", asked.transport},
            {"arguments", Json::parse(asked.arguments())}};
}

// The newest ones that are kept, oldest first; the port mapper's only when its procedure is named.
Json requests(const Boards& boards, ObjectReader& request) {
    const std::string wanted = request.text("procedure", "");
    const auto last = static_cast<std::size_t>(request.number("last", kNewest, 1, kMostRequests));
    Json rows = Json::array();
    for (const Board* board : boards) {
        const std::vector<Request> all = wanted.empty() ? board->requests() : board->requestsOf(wanted);
        for (std::size_t i = all.size() - std::min(last, all.size()); i < all.size(); ++i)
            rows.push_back(rowOf(*board, all[i]));
    }
    return rows;
}

Json forgetRequests(const Boards& boards, ObjectReader&) {
    for (Board* board : boards)
        board->forgetRequests();
    return nullptr;
}

Json faults(const Boards& boards, ObjectReader&) {
    Json rows = Json::array();
    for (const Board* board : boards)
        for (const Fault& fault : board->faults()) {
            Json row{{"board", board->serial()}};
            row.update(faultText(fault));
            rows.push_back(std::move(row));
        }
    return rows;
}

Json get(const Boards& boards, ObjectReader& request) {
    RegisterValue wanted = readRegister(request, false);
    Json rows = Json::array();
    for (const Board* board : boards) {
        wanted.value = board->registerValue(wanted.space, wanted.device, wanted.phy, wanted.address);
        Json row{{"board", board->serial()}};
        row.update(registerText(wanted));
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string fileOf(ObjectReader& request) {
    request.need("file");
    return request.text("file", "");
}

Json save(const Boards& boards, ObjectReader& request) {
    writeSnapshot(fileOf(request), snapshotOf(boards));
    return nullptr;
}

Json load(const Boards& boards, ObjectReader& request) {
    restoreSnapshot(boards, readJsonFile(fileOf(request)));
    return nullptr;
}

const std::vector<Query>& queries() {
    static const std::vector<Query> list_{
        {{"list", "", "boards, their addresses, sessions and faults", {}}, list},
        {{"get", "register=R device=0 phy=0 space=c45", "the value of a register", {"register"}}, get},
        {{"counts", "[procedure=P]", "how often procedures were asked for and run", {"procedure"}}, counts},
        {{"requests", "[procedure=P] [last=20]", "the newest requests", {"procedure"}}, requests},
        {{"forget-requests", "", "from now on requests begin here", {}}, forgetRequests},
        {{"faults", "", "faults that wait", {}}, faults},
        {{"save", "file=F", "writes every register to a snapshot file", {"file"}}, save},
        {{"load", "file=F", "replaces every register by those of a snapshot file", {"file"}}, load},
    };
    return list_;
}

} // namespace

const std::vector<QueryForm>& queryForms() {
    static const std::vector<QueryForm> forms = [] {
        std::vector<QueryForm> all;
        for (const Query& query : queries())
            all.push_back(query.form);
        return all;
    }();
    return forms;
}

std::vector<Board*> LabControl::meant(const std::string& board) {
    Boards boards = lab_.boards();
    if (board == "all")
        return boards;
    const auto other = [&](const Board* candidate) {
        return candidate->serial() != board && candidate->address() != board;
    };
    boards.erase(std::remove_if(boards.begin(), boards.end(), other), boards.end());
    if (boards.empty())
        throw ScriptError("board", "the lab has no board \"" + board + "\"");
    return boards;
}

Json LabControl::perform(const Json& request) {
    ObjectReader reader(request, "");
    reader.need("board");
    reader.need("action");
    const Boards boards = meant(reader.text("board", ""));
    const std::string verb = reader.text("action", "");
    for (const Query& query : queries())
        if (verb == query.form.name) {
            Json result = query.perform(boards, reader);
            reader.finish();
            return result;
        }
    const Action action = readAction(verb, reader);
    reader.finish();
    for (Board* board : boards)
        board->apply(action);
    return nullptr;
}

std::string LabControl::answer(const std::string& line) {
    Json answer{{"ok", true}};
    try {
        Json result = perform(parseJson(line));
        if (!result.is_null())
            answer["result"] = std::move(result);
    } catch (const std::exception& problem) {
        answer = {{"ok", false}, {"error", problem.what()}};
    }
    return answer.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace OrvaneSim
