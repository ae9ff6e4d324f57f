#pragma once

// Where the local model runtime lives, and the one rule that keeps every request on this machine.

#include <QUrl>
#include <optional>

namespace quelmo {

// The runtime's own default address.
inline const char* const defaultRuntimeEndpoint = "http://127.0.0.1:11434";

// Whether a local model runtime (Ollama) is installed: its program on the PATH or in one of the
// places its installers use, or a systemd unit that starts it. Only asks whether files exist;
// opens none. A runtime that answers on its port counts as installed whatever this says.
bool localRuntimeInstalled();

// `url` when it is an http address on this machine: a loopback IP literal, or "localhost", which
// is replaced by 127.0.0.1 so that no name is ever looked up. Nothing for any other address, so
// a request can never leave the machine.
std::optional<QUrl> loopbackEndpoint(const QUrl& url);

} // namespace quelmo
