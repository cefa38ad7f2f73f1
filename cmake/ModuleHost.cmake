# Modules loaded at run time work on the handles, windows and messages of the program that loads them, so
# they bring no platform layer: they use the program's.

# wirelet_hosts_modules(TARGET): a program that loads such modules. It takes in the whole platform layer
# and offers the calls that platform/exports.list names.
function(wirelet_hosts_modules target)
    target_link_libraries(${target} PRIVATE wirelet_platform)
    target_link_options(${target} PRIVATE
        "LINKER:--whole-archive,$<TARGET_FILE:wirelet_platform>,--no-whole-archive"
        "LINKER:--dynamic-list=${PROJECT_SOURCE_DIR}/platform/exports.list")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS
        ${PROJECT_SOURCE_DIR}/platform/exports.list)
endfunction()

# wirelet_module(TARGET NAME source...): a module that LoadLibraryA finds under NAME (lower case, without
# "lib" and ".so"). It can be unloaded.
function(wirelet_module target name)
    add_library(${target} MODULE ${ARGN})
    target_link_libraries(${target} PRIVATE wirelet_flags)
    target_compile_options(${target} PRIVATE -fvisibility=hidden)
    target_link_options(${target} PRIVATE
        LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/module.map)
    set_target_properties(${target} PROPERTIES PREFIX lib OUTPUT_NAME ${name}
        LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/module.map)
endfunction()
