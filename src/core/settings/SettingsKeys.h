#pragma once

// Every key the program keeps in its settings file (~/.config/quelmo/quelmo.conf), with the value
// each one stands for when it is absent. No other key is read or written. The names and value
// types outlive any one version of the program, so they never change.
//
//   key                           type                               absent means
//   quelmo.lang                   text, an AppLang raw value         "auto"
//   quelmo.catStyle               text: white, gray, cheese, black   "white"
//   nuvex.sensitivity             real, 0 to 1                       0.5 (the hub's own default)
//   nuvex.baselines.v1            bytes: a JSON document             no baselines
//   quelmo.focus.lastActive.v1    map: desktop-entry id -> seconds   no entries
//   quelmo.advisor.model          text: a local model's name         the advisor's own choice
//
// Launch at login is not a key: the autostart entry itself is the only record of it.
//
// The baselines document, the one value that grows with use, lives under its key in a settings
// file of its own (~/.config/quelmo/baselines.conf, `baselinesFile`), so that reading the small
// settings never parses it and its writes never hold up theirs.
namespace quelmo::SettingsKeys {

inline constexpr char lang[] = "quelmo.lang";
inline constexpr char catStyle[] = "quelmo.catStyle";
inline constexpr char sensitivity[] = "nuvex.sensitivity";
inline constexpr char baselines[] = "nuvex.baselines.v1";
inline constexpr char focusLastActive[] = "quelmo.focus.lastActive.v1";
inline constexpr char advisorModel[] = "quelmo.advisor.model"; // only ever read

inline constexpr char baselinesFile[] = "baselines"; // beside the settings file, with .conf

} // namespace quelmo::SettingsKeys

namespace quelmo::SettingsDefaults {

inline constexpr char lang[] = "auto";
inline constexpr char catStyle[] = "white";
inline constexpr double sensitivity = 0.5;

} // namespace quelmo::SettingsDefaults
