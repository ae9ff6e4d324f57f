target_sources(quelmo_platform_linux PRIVATE
  common/ProcFiles.h common/ProcFiles.cpp
)
