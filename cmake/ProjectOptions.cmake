# project_options: what every target of this project compiles with. Third-party targets do not link it, so their
# warnings stay theirs.
add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_20)
target_include_directories(project_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_definitions(project_options INTERFACE
    UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX
    _WIN32_WINNT=0x0A00)
target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion -Werror
    # GetProcAddress can only be used by such a cast.
    -Wno-cast-function-type
    "$<$<CONFIG:Debug>:-fsanitize=undefined;-fsanitize-undefined-trap-on-error;-fno-sanitize=vptr>"
    # What the optimizer guesses about data flow is wrong inside this compiler's own std::wstring and std::variant.
    # So is what it thinks of lists of stack objects that unlink themselves.
    -Wno-dangling-pointer -Wno-array-bounds -Wno-maybe-uninitialized -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)
target_compile_definitions(project_options INTERFACE "$<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>")

set(CMAKE_CXX_EXTENSIONS OFF)

# Sections that begin on pages of the file are mapped when a program starts; others, debug information of 200 MB among
# them, are read.
add_link_options(-Wl,--file-alignment,0x1000)

# -fpch-preprocess lets the cache see which precompiled header a source used.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_C_COMPILER_LAUNCHER "${PROJECT_SOURCE_DIR}/scripts/ccache.sh")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${PROJECT_SOURCE_DIR}/scripts/ccache.sh")
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fpch-preprocess>)
endif()
