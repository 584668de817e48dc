# copy_runtime_libraries(<folder>)
#
# All binaries share one C++ runtime, the DLL one: exceptions and objects of the standard library cross their
# boundaries. The compiler is asked where its runtime lies, and the libraries are copied beside the programs.
function(copy_runtime_libraries folder)
    file(MAKE_DIRECTORY "${folder}")
    foreach(library IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${library}"
            OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT IS_ABSOLUTE "${path}" OR NOT EXISTS "${path}")
            message(FATAL_ERROR "The compiler's runtime library ${library} was not found: "
                "install the package g++-mingw-w64-x86-64-posix (./tessary setup does it).")
        endif()
        file(REAL_PATH "${path}" path)
        if(NOT EXISTS "${folder}/${library}" OR "${path}" IS_NEWER_THAN "${folder}/${library}")
            # Without its debug information, which every program would read when it starts.
            execute_process(COMMAND "${CMAKE_STRIP}" --strip-debug -o "${folder}/${library}" "${path}"
                COMMAND_ERROR_IS_FATAL ANY)
        endif()
    endforeach()
endfunction()
