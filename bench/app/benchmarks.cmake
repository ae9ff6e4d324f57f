# The stall probe of the soak run (bench/app/soak.py): times the running program's answers on the
# session bus.
add_executable(quelmo_stall_probe ${CMAKE_CURRENT_LIST_DIR}/StallProbe.cpp)
target_link_libraries(quelmo_stall_probe PRIVATE Qt6::Core Qt6::DBus)
