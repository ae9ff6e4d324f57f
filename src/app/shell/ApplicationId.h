#pragma once

namespace quelmo {

// The reverse-DNS name that identifies Quelmo to the desktop: the desktop entry and the AppStream
// metadata are named after it, and so are the icons, the single-instance bus name and the tray
// item. The build sets it once for the code and the installed files alike.
inline constexpr const char* applicationId = QUELMO_APP_ID;

// The version the build was made as, as `quelmo --version` prints it.
inline constexpr const char* applicationVersion = QUELMO_VERSION;

} // namespace quelmo
