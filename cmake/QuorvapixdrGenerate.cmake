# quorvapixdr_generate(<name> ROOT <folder> FILES <file.x>... [IMPORTS <folder>...] [INDEX <function>] [TARGET <target>])
#
# Makes C++ from interface files. The module of a file is its path below ROOT without ".x"; imports are looked up below
# ROOT, then below each of IMPORTS. TARGET, a library of the caller's, gets everything: sources, include folders,
# dependencies, and the runtime to link. What else is made of the files uses these variables in the caller's scope:
#   <name>_SOURCES                the units and descriptions, to be compiled into the caller's library
#   <name>_DESCRIPTION_SOURCES    the descriptions alone, for tools beside that library
#   <name>_DOCUMENTATION_SOURCES  documentation for tools; quorva::modules(), or quorva::<INDEX>(), lists the modules
#   <name>_INCLUDE_DIR            the public headers: <quorvapixdr/types/MODULE.h>
#   <name>_PRIVATE_INCLUDE_DIR    what the sources need beside them, together with quorvapixdr::runtime
# and the target <name>_generate, on which every target that uses these files depends (add_dependencies).
# Files are rewritten only where their contents change.
function(quorvapixdr_generate name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "ROOT;INDEX;TARGET" "FILES;IMPORTS")
    if(arg_UNPARSED_ARGUMENTS OR arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR "quorvapixdr_generate(${name}): what is '${arg_UNPARSED_ARGUMENTS}${arg_KEYWORDS_MISSING_VALUES}'?")
    endif()
    if(NOT arg_ROOT OR NOT arg_FILES)
        message(FATAL_ERROR "quorvapixdr_generate(${name}): ROOT and FILES are needed")
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
            message(FATAL_ERROR "quorvapixdr_generate(${name}): ${file} is no .x file below ${root}")
        endif()
        string(REGEX REPLACE "\\.x$" "" module "${module}")
        list(APPEND files "${file}")
        list(APPEND units "${out}/src/${module}.cc")
        list(APPEND descriptions "${out}/descriptions/${module}.cc")
        list(APPEND documentation "${out}/documentation/${module}.cc")
        list(APPEND headers "${out}/include/quorvapixdr/types/${module}.h" "${out}/private/quorvapixdr/private/${module}.h")
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
        COMMAND ${compiler} generate --out "${out}" ${flags} --depfile "${stamp}.d" --target "${stamp}" ${imports} ${files}
        COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
        DEPENDS ${compiler} ${files} DEPFILE "${stamp}.d"
        COMMENT "Compiling the interface files of ${name}" VERBATIM)
    add_custom_target(${name}_generate DEPENDS "${stamp}")

    # Two libraries may hold types of one name: nothing but the routines and name functions leaves them.
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
