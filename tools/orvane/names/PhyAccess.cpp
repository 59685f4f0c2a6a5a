// Accesses made into batches, and what is missing made into a failure.
#include "tools/orvane/names/PhyAccess.h"

#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <fmt/format.h>

namespace OrvaneTool {

// Accesses that may go together: all on pages, or none.
struct PhyAccess::Part {
    const std::vector<Access>& accesses;
    std::size_t begin;
    std::size_t end;

    std::size_t size() const { return end - begin; }
    bool paged() const { return accesses[begin].reg.page >= 0; }
};

namespace {

// The failure, with what is missing as its place.
std::exception_ptr naming(const Orvane::Failure& failure, const std::vector<Access>& accesses,
                          const Outcome& outcome) {
    std::vector<Register> missing;
    bool writes = false;
    for (std::size_t i = 0; i < accesses.size(); ++i) {
        if (outcome.values[i] || (writes && !accesses[i].written))
            continue;
        writes = accesses[i].written.has_value();
        missing.push_back(accesses[i].reg);
    }
    Orvane::FailureDetails details = failure.details();
    details.operation = failure.operation() == "batch" ? writes ? "write" : "read" : failure.operation();
    details.location = rangesText(missing);
    return std::make_exception_ptr(Orvane::Failure(std::move(details)));
}

} // namespace

void Outcome::check() const {
    if (problem)
        std::rethrow_exception(problem);
}

std::vector<std::uint32_t> Outcome::all() const {
    check();
    std::vector<std::uint32_t> list;
    list.reserve(values.size());
    for (const std::optional<std::uint32_t>& each : values)
        list.push_back(each.value());
    return list;
}

Outcome PhyAccess::run(const std::vector<Access>& accesses) {
    Outcome outcome;
    outcome.values.resize(accesses.size());
    try {
        for (std::size_t begin = 0; begin < accesses.size();) {
            Part part{accesses, begin, begin + 1};
            while (part.end < accesses.size() && (accesses[part.end].reg.page >= 0) == part.paged())
                ++part.end;
            runPart(part, outcome);
            begin = part.end;
        }
    } catch (const Orvane::Failure& failure) {
        outcome.problem = naming(failure, accesses, outcome);
    }
    return outcome;
}

Outcome PhyAccess::read(const std::vector<Asked>& list) {
    std::vector<Access> accesses;
    accesses.reserve(list.size());
    for (const Asked& each : list) {
        accesses.push_back({each.reg, std::nullopt});
        once_ = once_ ||
                ((each.byName || maps_.given()) && each.mapped != nullptr && !each.mapped->isSafeToRead());
    }
    Outcome outcome = run(accesses);
    once_ = false;
    return outcome;
}

void PhyAccess::runPart(const Part& part, Outcome& outcome) {
    if (part.paged())
        runPaged(part, outcome);
    else if (routed_ || part.size() == 1)
        runSingly(part, outcome);
    else
        runBatch(part, outcome);
}

void PhyAccess::runSingly(const Part& part, Outcome& outcome) {
    for (std::size_t i = part.begin; i < part.end; ++i)
        outcome.values[i] = runOne(part.accesses[i]);
}

std::uint32_t PhyAccess::runOne(const Access& access) {
    const Orvane::RegisterAddress address = addressOf(access.reg);
    const auto carryOut = [&](const auto& phy) {
        if (!access.written)
            return phy.read(address, within(1));
        phy.write(address, *access.written, within(1));
        return *access.written;
    };
    return routed_ ? carryOut(phy_.routed()) : carryOut(phy_);
}

void PhyAccess::runBatch(const Part& part, Outcome& outcome) {
    Orvane::Batch batch;
    for (std::size_t i = part.begin; i < part.end; ++i) {
        const Access& access = part.accesses[i];
        if (access.written)
            batch.write(addressOf(access.reg), *access.written);
        else
            batch.read(addressOf(access.reg));
    }
    const Orvane::BatchResult result = phy_.run(batch, within(part.size()));
    for (std::size_t i = 0; i < part.size(); ++i)
        if (const Orvane::OperationOutcome& one = result.outcome(i);
            one.state == Orvane::OperationOutcome::State::Done)
            outcome.values[part.begin + i] = one.value;
    if (result.failure())
        throw Orvane::Failure(*result.failure());
}

void PhyAccess::runPaged(const Part& part, Outcome& outcome) {
    std::vector<const Orvane::MapRegister*> registers;
    for (std::size_t i = part.begin; i < part.end; ++i) {
        const Register& reg = part.accesses[i].reg;
        registers.push_back(maps_.find(reg));
        if (registers.back() == nullptr || !Orvane::isReachable(*registers.back()))
            throw UsageError(fmt::format("no map says how to reach {}", reg.text()));
    }
    const auto turn = [&] {
        Orvane::NamedBatch::Selects selects;
        for (const Orvane::MapRegister* const each : Orvane::NamedBatch::selectsOf(registers))
            selects[each] = phy_.read(*Orvane::addressOf(*each), within(1));
        Orvane::NamedBatch batch(std::move(selects));
        std::vector<Orvane::Batch::Reading> readings(part.size());
        for (std::size_t i = 0; i < part.size(); ++i)
            if (const auto& written = part.accesses[part.begin + i].written)
                batch.write(*registers[i], *written);
            else
                readings[i] = batch.read(*registers[i]);
        const Orvane::BatchResult result = phy_.run(batch.finish(), within(part.size()));
        if (result.failure())
            throw Orvane::Failure(*result.failure());
        for (std::size_t i = 0; i < part.size(); ++i) {
            const auto& written = part.accesses[part.begin + i].written;
            outcome.values[part.begin + i] = written ? *written : result[readings[i]];
        }
    };
    phy_.together(turn, within(part.size()));
}

// Long lists may take longer.
Orvane::Within PhyAccess::within(std::size_t accesses) const {
    const Orvane::Within limits = context_.within(patience_ + std::chrono::milliseconds(accesses));
    return once_ ? limits.once() : limits;
}

std::string rangesText(const std::vector<Register>& list) {
    constexpr std::size_t kMostRanges = 8;
    std::string text;
    std::size_t ranges = 0;
    for (std::size_t i = 0; i < list.size(); ++ranges) {
        std::size_t end = i + 1;
        for (Register next = list[i]; end < list.size() && (++next.address, list[end] == next);)
            ++end;
        if (ranges == kMostRanges)
            return text + fmt::format(" and {} more", list.size() - i);
        text += (text.empty() ? "" : " ") + list[i].text();
        if (end > i + 1)
            text += fmt::format("-0x{:04X}", list[end - 1].address);
        i = end;
    }
    return text;
}

} // namespace OrvaneTool
