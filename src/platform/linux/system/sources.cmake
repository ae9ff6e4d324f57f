target_sources(quelmo_platform_linux PRIVATE
  system/LinuxSystemInfo.h system/LinuxSystemInfo.cpp
  system/PidfdSignaller.h system/PidfdSignaller.cpp
  system/ThermalState.h system/ThermalState.cpp
)
