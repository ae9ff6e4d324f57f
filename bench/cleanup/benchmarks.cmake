# Cleanup detection benchmarks: one program, bench_cleanup, with a Qt application object around
# Google Benchmark (BenchMain.cpp). Add further benchmark files of the detection to its sources;
# each registers its cases with BENCHMARK(...).
#
# The desktop cases need an X desktop with windows: by default the program starts its own Xvfb and
# openbox (test dependencies, see scripts/install-deps.sh test) and opens 20 windows with the
# desktop tests' client; set QUELMO_BENCH_DISPLAY=:N to use an existing display instead.
#
#   cmake --build <build> --target bench_cleanup
#   <build>/bench/bench_cleanup --benchmark_min_time=2
if(TARGET quelmo_x11_harness AND TARGET quelmo_x11_test_client)
  add_executable(bench_cleanup
    ${CMAKE_CURRENT_LIST_DIR}/BenchMain.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DesktopBenchEnvironment.h
    ${CMAKE_CURRENT_LIST_DIR}/DesktopBenchEnvironment.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DesktopSessionBench.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DetectionBench.cpp)
  target_link_libraries(bench_cleanup PRIVATE quelmo_platform_linux quelmo_x11_harness
    benchmark::benchmark)
  add_dependencies(bench_cleanup quelmo_x11_test_client)
  target_compile_definitions(bench_cleanup PRIVATE
    QUELMO_TEST_CLIENT="$<TARGET_FILE:quelmo_x11_test_client>")
endif()

# The baseline store at its cap (no desktop needed):
#   <build>/bench/bench_baselines
add_executable(bench_baselines
  ${CMAKE_CURRENT_LIST_DIR}/BenchMain.cpp
  ${CMAKE_CURRENT_LIST_DIR}/BaselineStoreBench.cpp)
target_link_libraries(bench_baselines PRIVATE quelmo_core benchmark::benchmark)
