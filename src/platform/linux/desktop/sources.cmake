target_sources(quelmo_platform_linux PRIVATE
  desktop/DesktopServices.h desktop/DesktopServices.cpp
)
