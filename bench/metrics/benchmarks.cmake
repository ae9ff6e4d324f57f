# The metrics tick and the process snapshot on this machine, with `ps` run side by side.
add_executable(bench_metrics ${CMAKE_CURRENT_LIST_DIR}/MetricsBench.cpp)
target_link_libraries(bench_metrics PRIVATE quelmo_platform_linux benchmark::benchmark)
