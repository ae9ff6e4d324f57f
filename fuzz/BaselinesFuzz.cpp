// The stored baselines document: whatever the settings file holds. What decodes must encode
// again (or be refused for a value JSON cannot spell) and survive pruning.
#include "FuzzInput.h"
#include "core/cleanup/BaselineEngine.h"

#include <cstdlib>

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr qint64 today = 20000;
    auto decoded = BaselineEngine::decode(fuzz::bytes(data, size), today);
    if (!decoded)
        return 0;
    BaselineEngine::prune(*decoded, today);
    if (decoded->baselines.size() > BaselineEngine::maxEntries)
        std::abort();
    if (const auto encoded = BaselineEngine::encode(*decoded)) {
        const auto again = BaselineEngine::decode(*encoded, today);
        if (!again || again->baselines.size() != decoded->baselines.size())
            std::abort();
    }
    return 0;
}
