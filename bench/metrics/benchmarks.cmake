# The metrics tick and the process snapshot on this machine, with the kernel's floor and `ps` run
# side by side.
add_executable(bench_metrics ${CMAKE_CURRENT_LIST_DIR}/MetricsBench.cpp
  ${CMAKE_CURRENT_LIST_DIR}/IdleProcesses.cpp ${CMAKE_CURRENT_LIST_DIR}/IdleProcesses.h)
target_link_libraries(bench_metrics PRIVATE quelmo_platform_linux benchmark::benchmark)
