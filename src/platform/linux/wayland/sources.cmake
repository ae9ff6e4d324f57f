target_sources(quelmo_platform_linux PRIVATE
  wayland/LaunchedProcesses.h wayland/LaunchedProcesses.cpp
  wayland/WaylandFallbackSession.h wayland/WaylandFallbackSession.cpp
  wayland/WaylandSessions.h wayland/WaylandSessions.cpp
)
