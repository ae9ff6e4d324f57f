target_sources(quelmo_platform_linux PRIVATE
  metrics/MetricsReaders.h metrics/MetricsReaders.cpp
  metrics/CpuTicksReader.h metrics/CpuTicksReader.cpp
  metrics/ChipFactsReader.h metrics/ChipFactsReader.cpp
  metrics/MemInfoReader.h metrics/MemInfoReader.cpp
  metrics/NvmlLibrary.h metrics/NvmlLibrary.cpp
  metrics/IntelGpuPmu.h metrics/IntelGpuPmu.cpp
  metrics/GpuLoadReader.h metrics/GpuLoadReader.cpp
  metrics/EnergyReader.h metrics/EnergyReader.cpp
  metrics/ProcessToolRunner.h metrics/ProcessToolRunner.cpp
  metrics/ProcfsProcessReader.h metrics/ProcfsProcessReader.cpp
)
