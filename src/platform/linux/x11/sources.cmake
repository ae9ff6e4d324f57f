target_sources(quelmo_platform_linux PRIVATE
  x11/WindowRules.h x11/WindowRules.cpp
  x11/WindowSurvey.h x11/WindowSurvey.cpp
  x11/X11DesktopSession.h x11/X11DesktopSession.cpp
  x11/XcbConnection.h x11/XcbConnection.cpp
)
