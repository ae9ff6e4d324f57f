target_sources(quelmo_platform_linux PRIVATE
  apps/AppIdentity.h apps/AppIdentity.cpp
  apps/AutostartEntry.h apps/AutostartEntry.cpp
  apps/CgroupAppId.h apps/CgroupAppId.cpp
  apps/DesktopEntry.h apps/DesktopEntry.cpp
  apps/DesktopEntryIndex.h apps/DesktopEntryIndex.cpp
)
