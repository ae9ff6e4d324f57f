# Warnings and sanitizers applied to every target of the project.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                    -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual)
if(QUELMO_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

# The hardening Debian builds its packages with (dpkg-buildflags): checked libc calls where the
# compiler optimises, and a relocation table bound at start and then made read-only.
if(NOT QUELMO_SANITIZE AND NOT QUELMO_FUZZ)
  add_compile_definitions($<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
  add_link_options(LINKER:-z,relro,-z,now)
endif()

if(QUELMO_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "QUELMO_FUZZ needs clang: -DCMAKE_CXX_COMPILER=clang++")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer
                      -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()
