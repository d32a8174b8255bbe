# quorva_warnings(<target>): the warnings that all code of the project, generated code included, compiles without.
function(quorva_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # At -O3, g++ 12 takes the joining of strings for a copy between overlapping places.
        target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-Wno-restrict>)
    endif()
endfunction()
