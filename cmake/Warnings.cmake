# The warnings that all code of this project is clean under, the generated code included.
function(quorva_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion)
endfunction()
