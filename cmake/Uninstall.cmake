# Removes what was installed from the build tree BUILD, as the list in it tells, and the folders of ours that
# are empty then: cmake -DBUILD=folder -P cmake/Uninstall.cmake
set(list ${BUILD}/install_manifest.txt)
if(NOT EXISTS ${list})
    message(FATAL_ERROR "Nothing was installed from this build tree: there is no ${list}")
endif()

file(STRINGS ${list} files)
set(folders)
foreach(file IN LISTS files)
    set(file $ENV{DESTDIR}${file})
    if(EXISTS ${file})
        file(REMOVE ${file})
        if(EXISTS ${file})
            message(FATAL_ERROR "Cannot remove ${file}; sudo may help")
        endif()
        message(STATUS "Removed ${file}")
    endif()
    cmake_path(GET file PARENT_PATH folder)
    while(folder MATCHES "/wirelet(/|$)")
        list(APPEND folders ${folder})
        cmake_path(GET folder PARENT_PATH folder)
    endwhile()
endforeach()

# The longest first: a folder within another goes before it.
list(REMOVE_DUPLICATES folders)
list(SORT folders ORDER DESCENDING)
foreach(folder IN LISTS folders)
    # Refuses a folder that is not empty, whatever characters its name has.
    execute_process(COMMAND rmdir -- ${folder} ERROR_QUIET)
endforeach()
file(REMOVE ${list})
