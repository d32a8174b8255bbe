# quorva_warnings(<target>): the warnings that all code of the project, generated code included, compiles without.
function(quorva_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion)
endfunction()
