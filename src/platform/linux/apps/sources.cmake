target_sources(quelmo_platform_linux PRIVATE
  apps/AppIdentity.h apps/AppIdentity.cpp
  apps/AutostartEntry.h apps/AutostartEntry.cpp
  apps/CgroupAppId.h apps/CgroupAppId.cpp
  apps/DesktopEntry.h apps/DesktopEntry.cpp
  apps/DesktopEntryIndex.h apps/DesktopEntryIndex.cpp
)
# Where `cmake --install` (and so the package) puts the program; the autostart entry starts it.
set_property(SOURCE apps/AutostartEntry.cpp APPEND PROPERTY COMPILE_DEFINITIONS
  QUELMO_INSTALLED_PROGRAM="${CMAKE_INSTALL_FULL_BINDIR}/quelmo")
