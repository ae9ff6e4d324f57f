#include "core/advisor/LoopbackEndpoint.h"

#include <gtest/gtest.h>

using namespace quelmo;

namespace {

// Only a loopback literal, or "localhost" pinned to 127.0.0.1, over plain http is ever used.
TEST(LoopbackEndpointTest, OnlyPlainHttpToThisMachineIsAllowed) {
    EXPECT_EQ(loopbackEndpoint(QUrl("http://localhost:1")), QUrl("http://127.0.0.1:1"));
    EXPECT_EQ(loopbackEndpoint(QUrl("http://[::1]:2")), QUrl("http://[::1]:2"));
    for (const char* refused : {"http://localhost.example:1", "https://127.0.0.1:1",
                                "http://10.0.0.2:1", "http://127.0.0.1.nip.io:1", "file:///x"})
        EXPECT_EQ(loopbackEndpoint(QUrl(refused)), std::nullopt) << refused;
}

} // namespace
