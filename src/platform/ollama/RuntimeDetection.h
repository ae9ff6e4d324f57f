#pragma once

// Where the local model runtime (Ollama) lives on this machine.

namespace quelmo::ollama_platform {

// Whether the runtime is installed: its program on the PATH or in one of the places its
// installers use, or a systemd unit that starts it. Only asks whether files exist; opens none. A
// runtime that answers on its port counts as installed whatever this says.
bool localRuntimeInstalled();

} // namespace quelmo::ollama_platform
