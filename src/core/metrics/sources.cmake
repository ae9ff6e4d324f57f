target_sources(quelmo_core PRIVATE
  metrics/ProcInfo.h
  metrics/sources/CpuTicksSource.h metrics/sources/ChipFactsSource.h
  metrics/sources/GpuLoadSource.h metrics/sources/MemorySource.h
  metrics/sources/EnergySource.h metrics/sources/ProcessSource.h
  metrics/SystemMetrics.h metrics/SystemMetrics.cpp
  metrics/CPUMonitor.h metrics/CPUMonitor.cpp
  metrics/ChipInfo.h metrics/ChipInfo.cpp
  metrics/GPUMonitor.h metrics/GPUMonitor.cpp
  metrics/MemoryMonitor.h metrics/MemoryMonitor.cpp
  metrics/PowerMonitor.h metrics/PowerMonitor.cpp
  metrics/ProcessMonitor.h metrics/ProcessMonitor.cpp
  metrics/ProcessScanner.h metrics/ProcessScanner.cpp metrics/ProcessScanWorker.h
  metrics/ProcessListText.h metrics/ProcessListText.cpp
)
