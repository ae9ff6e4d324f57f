target_sources(quelmo_platform_linux PRIVATE
  wayland/LaunchedProcesses.h wayland/LaunchedProcesses.cpp
  wayland/WaylandFallbackSession.h wayland/WaylandFallbackSession.cpp
  wayland/WaylandSessions.h wayland/WaylandSessions.cpp
  wayland/CompositorLink.h
  wayland/CompositorRules.h wayland/CompositorRules.cpp
  wayland/CompositorSession.h wayland/CompositorSession.cpp
  wayland/I3IpcProtocol.h wayland/I3IpcProtocol.cpp
  wayland/I3IpcLink.h wayland/I3IpcLink.cpp
)
