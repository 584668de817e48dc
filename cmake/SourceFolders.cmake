# collect_sources(<variable> <folder> [EXCLUDE <regex>...])
#
# All C++ and resource sources below <folder> (relative to the current one), found again at every build, so that a new
# file is compiled without an edit here. A path that matches one of the regular expressions is left out; the expressions
# see the path relative to the current folder.
function(collect_sources variable folder)
    cmake_parse_arguments(PARSE_ARGV 2 option "" "" "EXCLUDE")
    file(GLOB_RECURSE found CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}"
        "${folder}/*.cpp" "${folder}/*.rc")
    foreach(expression IN LISTS option_EXCLUDE)
        list(FILTER found EXCLUDE REGEX "${expression}")
    endforeach()
    set(${variable} ${found} PARENT_SCOPE)
endfunction()
