// Whether devices are listed, asked for many at a time.
#pragma once

#include "ov_sys/Interface/devices/SimpleDeviceEntry.h"
#include "ov_sys/Interface/foundation/AppendOnlyList.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_set>

namespace Orvane {

// The names that a list of devices has when one is first asked for, and of those that are added later. One
// thread at a time, with the list's lock held.
class ListedNames {
public:
    using Devices = AppendOnlyList<std::unique_ptr<SimpleDeviceEntry>>;

    // `devices` must outlive this.
    explicit ListedNames(const Devices& devices) noexcept : devices_(devices) {}

    // `name` in any letter case. Throws std::bad_alloc.
    bool contains(std::string name) {
        for (; taken_ < devices_.size(); ++taken_)
            names_.insert(devices_[taken_]->name);
        HWIHelper::str_to_upper(name);
        return names_.count(name) != 0;
    }

private:
    const Devices& devices_;
    std::size_t taken_ = 0;
    std::unordered_set<std::string> names_;
};

} // namespace Orvane
