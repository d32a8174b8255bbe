# quorvapixdr_generate(<name> ROOT <folder> FILES <file.x>... [IMPORTS <folder>...] [INDEX <function>]
#                      [TARGET <target>])
#
# Generates C++ from interface files. The module of a file is its path below ROOT without ".x". Imports are searched for
# below ROOT, then below each of IMPORTS. TARGET is a library of the caller: it gets the sources, include folders and
# dependencies, and links the runtime. For other uses the function sets these variables in the caller's scope:
#   <name>_SOURCES                the sources and descriptions, to be compiled into the caller's library
#   <name>_DESCRIPTION_SOURCES    the descriptions alone, for tools
#   <name>_DOCUMENTATION_SOURCES  documentation, for tools; quorva::modules() or quorva::<INDEX>() lists the modules
#   <name>_INCLUDE_DIR            the folder of the public headers, <quorvapixdr/types/MODULE.h>
#   <name>_PRIVATE_INCLUDE_DIR    the folder of the headers that only the sources include
# A target that compiles these files without TARGET must depend on the target <name>_generate (add_dependencies) and
# link quorvapixdr::runtime. A generated file is rewritten only if its contents change.
function(quorvapixdr_generate name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "ROOT;INDEX;TARGET" "FILES;IMPORTS")
    if(arg_UNPARSED_ARGUMENTS OR arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR "quorvapixdr_generate(${name}): unknown argument or missing value: "
            "${arg_UNPARSED_ARGUMENTS}${arg_KEYWORDS_MISSING_VALUES}")
    endif()
    if(NOT arg_ROOT OR NOT arg_FILES)
        message(FATAL_ERROR "quorvapixdr_generate(${name}): ROOT and FILES are required")
    endif()
    get_filename_component(root "${arg_ROOT}" ABSOLUTE)
    set(out "${CMAKE_CURRENT_BINARY_DIR}/${name}")
    set(units "")
    set(descriptions "")
    set(documentation "${out}/modules.cc")
    set(headers "")
    set(files "")
    foreach(file IN LISTS arg_FILES)
        get_filename_component(file "${file}" ABSOLUTE)
        file(RELATIVE_PATH module "${root}" "${file}")
        if(module MATCHES "^\\.\\./" OR NOT module MATCHES "\\.x$")
            message(FATAL_ERROR "quorvapixdr_generate(${name}): ${file} is not a .x file below ${root}")
        endif()
        string(REGEX REPLACE "\\.x$" "" module "${module}")
        list(APPEND files "${file}")
        list(APPEND units "${out}/src/${module}.cc")
        list(APPEND descriptions "${out}/descriptions/${module}.cc")
        list(APPEND documentation "${out}/documentation/${module}.cc")
        list(APPEND headers "${out}/include/quorvapixdr/types/${module}.h"
            "${out}/private/quorvapixdr/private/${module}.h")
    endforeach()
    set(flags "")
    if(arg_INDEX)
        list(APPEND flags --index "${arg_INDEX}")
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
    add_custom_command(OUTPUT "${stamp}" BYPRODUCTS ${units} ${descriptions} ${documentation} ${headers}
        COMMAND ${compiler} generate --out "${out}" ${flags} --depfile "${stamp}.d" --target "${stamp}" ${imports}
            ${files}
        COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
        DEPENDS ${compiler} ${files} DEPFILE "${stamp}.d"
        COMMENT "Compiling the interface files of ${name}" VERBATIM)
    add_custom_target(${name}_generate DEPENDS "${stamp}")

    # Two libraries may have types of the same name, so a library exports only routines and name functions.
    set_source_files_properties(${units} ${descriptions} ${documentation} PROPERTIES
        COMPILE_OPTIONS -fvisibility=hidden INCLUDE_DIRECTORIES "${out}/private;${out}/include")
    if(arg_TARGET)
        target_sources(${arg_TARGET} PRIVATE ${units} ${descriptions})
        add_dependencies(${arg_TARGET} ${name}_generate)
        target_include_directories(${arg_TARGET} PUBLIC "$<BUILD_INTERFACE:${out}/include>")
        target_link_libraries(${arg_TARGET} PRIVATE quorvapixdr::runtime)
    endif()
    set(${name}_SOURCES "${units}" "${descriptions}" PARENT_SCOPE)
    set(${name}_DESCRIPTION_SOURCES "${descriptions}" PARENT_SCOPE)
    set(${name}_DOCUMENTATION_SOURCES "${documentation}" PARENT_SCOPE)
    set(${name}_INCLUDE_DIR "${out}/include" PARENT_SCOPE)
    set(${name}_PRIVATE_INCLUDE_DIR "${out}/private" PARENT_SCOPE)
endfunction()
