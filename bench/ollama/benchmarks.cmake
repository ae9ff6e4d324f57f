# Main-thread cost of one model evaluation, against a loopback stand-in for the local runtime.
add_executable(bench_advisor
  ${CMAKE_CURRENT_LIST_DIR}/AdvisorBenchmark.cpp
  ${PROJECT_SOURCE_DIR}/tests/platform/ollama/FakeOllamaServer.cpp)
target_include_directories(bench_advisor PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(bench_advisor PRIVATE quelmo_platform_ollama Qt6::Network benchmark::benchmark)
