target_sources(quelmo_platform_linux PRIVATE
  common/RootPath.h common/RootPath.cpp
  common/KernelFile.h common/KernelFile.cpp
  common/KernelText.h common/KernelText.cpp
  common/ProcStat.h common/ProcStat.cpp
  common/UserNames.h common/UserNames.cpp
)
