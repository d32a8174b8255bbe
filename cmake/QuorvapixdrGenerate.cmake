# quorvapixdr_generate(<name> ROOT <folder> FILES <file.x>... [IMPORTS <folder>...] [NO_INDEX])
#
# Makes headers, units and schema tables from interface files. The module of a file is its path below ROOT without ".x";
# imports are looked up below ROOT, then below each of IMPORTS. In the caller's scope it sets
#   <name>_SOURCES         the units, to be compiled into the caller's library
#   <name>_SCHEMA_SOURCES  the schema tables, for the inspector and tests (with the list of all modules, unless NO_INDEX)
#   <name>_INCLUDE_DIR     to be added to the include path; headers are <quorvapixdr/MODULE.h>
# and it makes the target <name>_generate, on which every target that uses these files must depend (add_dependencies).
# Files are rewritten only where their contents change.
function(quorvapixdr_generate name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "NO_INDEX" "ROOT" "FILES;IMPORTS")
    if(NOT arg_ROOT OR NOT arg_FILES)
        message(FATAL_ERROR "quorvapixdr_generate(${name}): ROOT and FILES are needed")
    endif()
    get_filename_component(root "${arg_ROOT}" ABSOLUTE)
    set(out "${CMAKE_CURRENT_BINARY_DIR}/${name}")
    set(sources "")
    set(schemas "")
    set(headers "")
    set(files "")
    foreach(file IN LISTS arg_FILES)
        get_filename_component(file "${file}" ABSOLUTE)
        file(RELATIVE_PATH module "${root}" "${file}")
        if(module MATCHES "^\\.\\./" OR NOT module MATCHES "\\.x$")
            message(FATAL_ERROR "quorvapixdr_generate(${name}): ${file} is no .x file below ${root}")
        endif()
        string(REGEX REPLACE "\\.x$" "" module "${module}")
        list(APPEND files "${file}")
        list(APPEND sources "${out}/src/${module}.cc")
        list(APPEND schemas "${out}/schema/${module}.cc")
        list(APPEND headers "${out}/include/quorvapixdr/${module}.h" "${out}/include/quorvapixdr/${module}.bodies.h")
    endforeach()
    set(flags "")
    if(arg_NO_INDEX)
        list(APPEND flags --no-index)
    else()
        list(APPEND schemas "${out}/schema/modules.cc")
    endif()
    set(imports -I "${root}")
    foreach(folder IN LISTS arg_IMPORTS)
        get_filename_component(folder "${folder}" ABSOLUTE)
        list(APPEND imports -I "${folder}")
    endforeach()

    if(TARGET quorvapixdr::quorvaxdrc)
        set(compiler quorvapixdr::quorvaxdrc)
    else()
        set(compiler quorvaxdrc)
    endif()
    set(stamp "${CMAKE_CURRENT_BINARY_DIR}/${name}.stamp")
    add_custom_command(OUTPUT "${stamp}" BYPRODUCTS ${sources} ${schemas} ${headers}
        COMMAND ${compiler} generate --out "${out}" ${flags} --depfile "${stamp}.d" --target "${stamp}" ${imports} ${files}
        COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
        DEPENDS ${compiler} ${files} DEPFILE "${stamp}.d"
        COMMENT "Compiling the interface files of ${name}" VERBATIM)
    add_custom_target(${name}_generate DEPENDS "${stamp}")

    set(${name}_SOURCES "${sources}" PARENT_SCOPE)
    set(${name}_SCHEMA_SOURCES "${schemas}" PARENT_SCOPE)
    set(${name}_INCLUDE_DIR "${out}/include" PARENT_SCOPE)
endfunction()
