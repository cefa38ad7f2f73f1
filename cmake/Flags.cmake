# One place for the compiler's flags; every folder's target links wirelet_flags.
add_library(wirelet_flags INTERFACE)
target_include_directories(wirelet_flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(wirelet_flags INTERFACE -Wall -Wextra -Wconversion -Wshadow)
if(WIRELET_WERROR)
    target_compile_options(wirelet_flags INTERFACE -Werror)
endif()

if(WIRELET_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "The fuzzers need clang: -DCMAKE_CXX_COMPILER=clang++")
    endif()
    target_compile_options(wirelet_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined
        -fno-sanitize-recover=all -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS)
    target_link_options(wirelet_flags INTERFACE -fsanitize=address,undefined)
elseif(WIRELET_SANITIZE STREQUAL "address")
    target_compile_options(wirelet_flags INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(wirelet_flags INTERFACE -fsanitize=address,undefined)
elseif(WIRELET_SANITIZE STREQUAL "thread")
    # The instrumentation hides lengths from these warnings, which then see overruns where none are.
    target_compile_options(wirelet_flags INTERFACE -fsanitize=thread -fno-omit-frame-pointer
        -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow)
    target_link_options(wirelet_flags INTERFACE -fsanitize=thread)
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
    # A terminal is started often and waits long: one small binary that loads and relocates little.
    target_compile_options(wirelet_flags INTERFACE -flto=auto -ffunction-sections -fdata-sections
        -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
    target_link_options(wirelet_flags INTERFACE -flto=auto -O3 -static-libstdc++ -static-libgcc
        -Wl,--gc-sections -Wl,-O1 -Wl,--as-needed)
endif()
