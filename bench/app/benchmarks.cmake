# The stall probe of the soak run (bench/app/soak.py): times the running program's answers on the
# session bus.
add_executable(quelmo_stall_probe ${CMAKE_CURRENT_LIST_DIR}/StallProbe.cpp)
target_link_libraries(quelmo_stall_probe PRIVATE Qt6::Core Qt6::DBus)

# The floor under the open popover's cost (bench/app/open_cost.py): a bare Qt Quick window with one
# motion, drawn as often as the popover's scissors are.
add_executable(quelmo_quick_floor ${CMAKE_CURRENT_LIST_DIR}/QuickFloor.cpp)
target_link_libraries(quelmo_quick_floor PRIVATE Qt6::Quick)
