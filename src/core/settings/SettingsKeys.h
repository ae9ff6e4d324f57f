#pragma once

// Every key the program keeps in its settings file (~/.config/quelmo/quelmo.conf).
namespace quelmo::SettingsKeys {

inline constexpr char lang[] = "quelmo.lang";
inline constexpr char catStyle[] = "quelmo.catStyle";
inline constexpr char sensitivity[] = "nuvex.sensitivity";
inline constexpr char baselines[] = "nuvex.baselines.v1";
inline constexpr char focusLastActive[] = "quelmo.focus.lastActive.v1";

} // namespace quelmo::SettingsKeys
