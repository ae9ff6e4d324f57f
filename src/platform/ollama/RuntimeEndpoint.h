#pragma once

// Which address of this machine the local runtime listens on, from the OLLAMA_HOST variable that
// the runtime and its own tools read.

#include <QString>
#include <QUrl>

namespace quelmo::ollama_platform {

// The runtime's own default address.
inline const char* const defaultRuntimeEndpoint = "http://127.0.0.1:11434";
inline constexpr int defaultRuntimePort = 11434;

struct EndpointChoice {
    QUrl endpoint;
    // Why the variable was not followed; empty when it was, or when it is not set.
    QString refusal;
};

// The endpoint to use for a value of OLLAMA_HOST, read the way the runtime reads it: the scheme
// may be left out (http), and so may the host (127.0.0.1) and the port (11434); a path is
// ignored. The unspecified addresses 0.0.0.0 and [::], which a runtime binds to listen on every
// interface, are reached on loopback. The address named is used when it is a loopback address;
// otherwise, and for an empty value, the default, with the reason when there was a value.
EndpointChoice runtimeEndpoint(const QString& hostVariable);

} // namespace quelmo::ollama_platform
