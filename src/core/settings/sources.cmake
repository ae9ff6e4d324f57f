target_sources(quelmo_core PRIVATE
  settings/SettingsKeys.h
  settings/Preferences.h settings/Preferences.cpp
  settings/AppLang.h settings/AppLang.cpp
  settings/LoginItem.h settings/LoginItem.cpp
)
# Where `cmake --install` (and so the package) puts the program; the autostart entry starts it.
set_property(SOURCE settings/LoginItem.cpp APPEND PROPERTY COMPILE_DEFINITIONS
  QUELMO_INSTALLED_PROGRAM="${CMAKE_INSTALL_FULL_BINDIR}/quelmo")
