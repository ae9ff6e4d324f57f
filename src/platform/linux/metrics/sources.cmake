target_sources(quelmo_platform_linux PRIVATE
  metrics/MetricsReaders.h metrics/MetricsReaders.cpp
)
