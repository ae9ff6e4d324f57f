target_sources(quelmo_platform_linux PRIVATE
  desktop/DesktopServices.h desktop/DesktopServices.cpp
  desktop/ProcFiles.h desktop/ProcFiles.cpp
  desktop/CgroupAppId.h desktop/CgroupAppId.cpp
  desktop/DesktopEntry.h desktop/DesktopEntry.cpp
  desktop/DesktopEntryIndex.h desktop/DesktopEntryIndex.cpp
  desktop/AppIdentity.h desktop/AppIdentity.cpp
  desktop/WindowRules.h desktop/WindowRules.cpp
  desktop/XcbConnection.h desktop/XcbConnection.cpp
  desktop/WindowSurvey.h desktop/WindowSurvey.cpp
  desktop/X11DesktopSession.h desktop/X11DesktopSession.cpp
  desktop/ThermalState.h desktop/ThermalState.cpp
  desktop/LinuxSystemInfo.h desktop/LinuxSystemInfo.cpp
  desktop/PidfdSignaller.h desktop/PidfdSignaller.cpp
)
