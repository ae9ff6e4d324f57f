target_sources(quelmo_platform_linux PRIVATE
  wayland/LaunchedProcesses.h wayland/LaunchedProcesses.cpp
  wayland/WaylandFallbackSession.h wayland/WaylandFallbackSession.cpp
  wayland/WaylandSessions.h wayland/WaylandSessions.cpp
  wayland/CompositorLink.h
  wayland/CompositorRules.h wayland/CompositorRules.cpp
  wayland/CompositorSession.h wayland/CompositorSession.cpp
  wayland/EntryProcesses.h wayland/EntryProcesses.cpp
  wayland/I3IpcProtocol.h wayland/I3IpcProtocol.cpp
  wayland/I3IpcLink.h wayland/I3IpcLink.cpp
  wayland/SwayWindowPlacer.h wayland/SwayWindowPlacer.cpp
  wayland/HyprlandProtocol.h wayland/HyprlandProtocol.cpp
  wayland/HyprlandLink.h wayland/HyprlandLink.cpp
  wayland/KWinScript.h wayland/KWinScript.cpp
  wayland/KWinScriptLink.h wayland/KWinScriptLink.cpp
)

# The wlroots foreign-toplevel protocol, its client code generated from the protocol's XML.
pkg_check_modules(WAYLAND_CLIENT REQUIRED IMPORTED_TARGET wayland-client)
find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)
set(toplevel_xml
  ${CMAKE_CURRENT_SOURCE_DIR}/wayland/protocols/wlr-foreign-toplevel-management-unstable-v1.xml)
set(protocol_dir ${CMAKE_CURRENT_BINARY_DIR}/wayland-protocols)
set(toplevel_header ${protocol_dir}/wlr-foreign-toplevel-management-unstable-v1-client-protocol.h)
set(toplevel_code ${protocol_dir}/wlr-foreign-toplevel-management-unstable-v1-protocol.c)
add_custom_command(
  OUTPUT ${toplevel_header} ${toplevel_code}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${protocol_dir}
  COMMAND ${WAYLAND_SCANNER} client-header ${toplevel_xml} ${toplevel_header}
  COMMAND ${WAYLAND_SCANNER} private-code ${toplevel_xml} ${toplevel_code}
  DEPENDS ${toplevel_xml}
  VERBATIM)
add_library(quelmo_wayland_protocols STATIC ${toplevel_code} ${toplevel_header})
# Generated tables: the project's C++ warnings and sanitizers do not apply to them.
set_target_properties(quelmo_wayland_protocols PROPERTIES COMPILE_OPTIONS "" POSITION_INDEPENDENT_CODE ON)
# Generated code: its casts are the generator's style, not ours to warn about.
target_include_directories(quelmo_wayland_protocols SYSTEM PUBLIC ${protocol_dir})
target_link_libraries(quelmo_wayland_protocols PUBLIC PkgConfig::WAYLAND_CLIENT)
target_sources(quelmo_platform_linux PRIVATE
  wayland/ForeignToplevelLink.h wayland/ForeignToplevelLink.cpp)
target_link_libraries(quelmo_platform_linux PRIVATE quelmo_wayland_protocols Qt6::DBus)
