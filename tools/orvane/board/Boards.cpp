// Listening for boards, with a count, and with doubt where they still answer in the end.
#include "tools/orvane/board/Boards.h"

#include "tools/orvane/board/DeviceCache.h"
#include "tools/orvane/output/Progress.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

using Clock = std::chrono::steady_clock;

// A board whose first answer comes so shortly before the end that others may come later still.
constexpr std::chrono::milliseconds kLate{200};

class Lookout {
public:
    Lookout(Context& context, const Search& search)
        : context_(context), search_(search), spinner_(context.console.err, text(0)) {}

    Orvane::Discovery ask() {
        return context_.rack().ask(context_.addresses, context_.within(std::chrono::seconds(5)));
    }
    Orvane::Discovery listen() {
        end_ = Clock::now() + search_.time;
        const auto noted = [this](const Orvane::FoundBoard& board) { return note(board); };
        return context_.rack().discover(noted, context_.within(search_.time));
    }

    // Why there may be more boards than these.
    std::string doubt(const Orvane::Discovery& found) const {
        if (found.malformed > 0)
            return fmt::format("{} answer{} named no port as {} should", found.malformed,
                               found.malformed == 1 ? "" : "s", found.malformed == 1 ? "it" : "they");
        if (!enough_ && count_ > 0 && last_ + kLate > end_)
            return "boards were still answering when the time was over (--time gives them more)";
        return {};
    }

private:
    bool note(const Orvane::FoundBoard& board) {
        last_ = Clock::now();
        ++count_;
        spinner_.say(text(count_));
        enough_ = search_.enough && search_.enough(board, count_);
        return enough_;
    }
    std::string text(std::size_t count) const {
        return fmt::format("looking for {}{}", search_.what, count > 0 ? fmt::format(", {}", count) : "");
    }

    Context& context_;
    const Search& search_;
    std::size_t count_ = 0;
    bool enough_ = false;
    Clock::time_point last_; // answer of another board
    Clock::time_point end_ = Clock::time_point::max();
    Spinner spinner_;
};

} // namespace

Boards lookForBoards(Context& context, const Search& search) {
    Orvane::Discovery found;
    std::string doubt;
    {
        Lookout lookout(context, search);
        found = context.addresses.empty() ? lookout.listen() : lookout.ask();
        doubt = lookout.doubt(found);
    }
    context.interrupts().check();
    rememberDevices(found.boards);
    return {std::move(found.boards), std::move(doubt)};
}

} // namespace OrvaneTool
