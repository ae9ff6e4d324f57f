#pragma once

// The one rule that keeps every request to the model on this machine.

#include <QUrl>
#include <optional>

namespace quelmo {

// `url` when it is an http address on this machine: a loopback IP literal, or "localhost", which
// is replaced by 127.0.0.1 so that no name is ever looked up. Nothing for any other address, so
// a request can never leave the machine.
std::optional<QUrl> loopbackEndpoint(const QUrl& url);

} // namespace quelmo
