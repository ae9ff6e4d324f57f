// The stored focus history as the settings file keeps it: a map serialised by QDataStream,
// which any edit or disk fault can leave in any shape.
#include "FuzzInput.h"
#include "core/cleanup/FocusTracker.h"

#include <QDataStream>
#include <cmath>
#include <cstdlib>

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    QDataStream in(fuzz::bytes(data, size));
    QVariant stored;
    in >> stored;
    if (const auto history = FocusTracker::decodeHistory(stored)) {
        for (const double seconds : *history)
            if (!std::isfinite(seconds))
                std::abort();
    }
    return 0;
}
