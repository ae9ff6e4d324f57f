#pragma once

#include <QtGlobal>
#include <cstdint>
#include <optional>

namespace quelmo {

// One particular process: its pid together with the moment it started (kernel clock ticks after
// boot). A pid alone may name a later process once the first has ended; the pair never does.
struct ProcessIdentity {
    qint64 pid = 0;
    std::optional<std::uint64_t> startTime; // nothing when the process table did not tell it

    friend bool operator==(const ProcessIdentity&, const ProcessIdentity&) = default;
};

} // namespace quelmo
