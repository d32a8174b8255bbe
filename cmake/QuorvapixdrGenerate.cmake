# quorvapixdr_generate([<name>] TARGET <target> ROOT <folder> FILES <file.x>... [IMPORTS <folder>...] [LANGUAGES C])
# quorvapixdr_generate(<name> ROOT <folder> FILES <file.x>... [IMPORTS <folder>...] [INDEX <function>] [LANGUAGES C])
#
# Generates C++ from interface files. The module of a file is its path below ROOT without ".x". Imports are searched for
# below ROOT, then below each of IMPORTS. An unknown or missing argument is an error, and so is a name that another
# module below these folders defines, too.
#
# TARGET is a library or program of the caller, of any folder: it compiles the generated sources, has the folder of the
# headers, <quorvapixdr/types/MODULE.h>, in its interface, and links the runtime. A target that links it needs nothing
# else: the headers are there before it compiles. <name> is needed for a second call with the same TARGET.
#
# LANGUAGES C adds headers for C11, <quorvapixdr/c/MODULE.h>, to the folder of the headers. C++ is always generated: the
# sources are C++, so the project needs both languages.
#
# For other uses the function sets these variables in the caller's scope:
#   <name>_SOURCES                the sources and descriptions, to be compiled into the caller's library
#   <name>_DESCRIPTION_SOURCES    the descriptions alone, for tools
#   <name>_DOCUMENTATION_SOURCES  documentation, for tools, with the function that lists the modules
#   <name>_INCLUDE_DIR            the folder of the public headers
#   <name>_PRIVATE_INCLUDE_DIR    the folder of the headers that only the sources include
# They are for targets of the caller's folder. A target that compiles such files without being TARGET must depend on the
# target <name>_generate (add_dependencies) and link quorvapixdr::runtime.
#
# INDEX names the function that lists the modules, quorva::<INDEX>(); the default is quorva::modules(), declared in
# <quorvapixdr/documentation.h>. The inspector's library exports quorva::modules() for its own, so a program with both
# needs INDEX. It declares that function itself, as `std::span<const Module* const>()` in namespace quorva, and calls it
# in the library or program that compiles the documentation: outside of it the function is hidden.
#
# QUORVA_COMPILER is the path of a quorvaxdrc to run instead of the package's own, for cross builds. A generated file is
# rewritten only if its contents change.

cmake_policy(PUSH)
cmake_policy(VERSION 3.20...3.25)  # whatever version the caller's project asks for

function(quorvapixdr_generate)
    set(single TARGET ROOT INDEX)
    set(several FILES IMPORTS LANGUAGES)
    list(JOIN single ", " known)
    list(JOIN several ", " known_lists)
    set(known "known are ${known} with one value, ${known_lists} with one or more")

    set(name "${ARGV0}")
    set(first 1)
    if(name IN_LIST single OR name IN_LIST several)
        set(name "")
        set(first 0)
    endif()
    cmake_parse_arguments(PARSE_ARGV ${first} arg "" "${single}" "${several}")
    if(name STREQUAL "")
        set(name "${arg_TARGET}")
    endif()
    set(called "quorvapixdr_generate(${name})")
    if(arg_UNPARSED_ARGUMENTS)
        list(JOIN arg_UNPARSED_ARGUMENTS " " unknown)
        message(FATAL_ERROR "${called}: unknown argument: ${unknown}; ${known}")
    endif()
    foreach(keyword IN LISTS single several)
        if(keyword IN_LIST arg_KEYWORDS_MISSING_VALUES OR (DEFINED arg_${keyword} AND arg_${keyword} STREQUAL ""))
            message(FATAL_ERROR "${called}: ${keyword} has no value; ${known}")
        endif()
    endforeach()
    foreach(keyword IN ITEMS ROOT FILES)
        if(NOT DEFINED arg_${keyword})
            message(FATAL_ERROR "${called}: ${keyword} is missing; ${known}")
        endif()
    endforeach()
    foreach(language IN LISTS arg_LANGUAGES)
        if(NOT language MATCHES "^(C|CXX)$")
            message(FATAL_ERROR "${called}: LANGUAGES ${language} is unknown; known are C, and CXX, which is always "
                "generated")
        endif()
    endforeach()
    if(DEFINED arg_TARGET)
        set(type "")
        if(TARGET ${arg_TARGET})
            get_target_property(type ${arg_TARGET} TYPE)
            get_target_property(imported ${arg_TARGET} IMPORTED)
        endif()
        if(NOT type MATCHES "^(STATIC|SHARED|MODULE|OBJECT)_LIBRARY$|^EXECUTABLE$" OR imported)
            message(FATAL_ERROR "${called}: TARGET ${arg_TARGET} is not a library or program that this project "
                "compiles; call add_library(${arg_TARGET}) or add_executable(${arg_TARGET}) before")
        endif()
    endif()
    if(NOT name MATCHES "^[A-Za-z0-9_.+-]+$")
        message(FATAL_ERROR "${called}: needs a TARGET, or a name as its first argument; ${known}")
    endif()

    set(out "${CMAKE_CURRENT_BINARY_DIR}/${name}")
    set(units "")
    set(descriptions "")
    set(documentation "${out}/modules.cc")
    set(headers "")
    set(files "")
    set(imports "")
    foreach(folder IN LISTS arg_ROOT arg_IMPORTS)
        get_filename_component(folder "${folder}" ABSOLUTE)
        if(NOT IS_DIRECTORY "${folder}")
            message(FATAL_ERROR "${called}: ${folder} is not a folder; ${known}")
        endif()
        list(APPEND imports -I "${folder}")
    endforeach()
    get_filename_component(root "${arg_ROOT}" ABSOLUTE)
    foreach(file IN LISTS arg_FILES)
        get_filename_component(file "${file}" ABSOLUTE)
        file(RELATIVE_PATH module "${root}" "${file}")
        if(module MATCHES "^\\.\\./" OR NOT module MATCHES "\\.x$")
            message(FATAL_ERROR "${called}: ${file} is not a .x file below ROOT, ${root}; ${known}")
        endif()
        get_source_file_property(made_by_build "${file}" GENERATED)
        if(NOT made_by_build AND NOT EXISTS "${file}")
            message(FATAL_ERROR "${called}: there is no file ${file}")
        endif()
        string(REGEX REPLACE "\\.x$" "" module "${module}")
        list(APPEND files "${file}")
        list(APPEND units "${out}/src/${module}.cc")
        list(APPEND descriptions "${out}/descriptions/${module}.cc")
        list(APPEND documentation "${out}/documentation/${module}.cc")
        list(APPEND headers "${out}/include/quorvapixdr/types/${module}.h"
            "${out}/private/quorvapixdr/private/${module}.h")
        if("C" IN_LIST arg_LANGUAGES)
            list(APPEND headers "${out}/include/quorvapixdr/c/${module}.h")
        endif()
    endforeach()
    set(flags "")
    if(arg_INDEX)
        set(flags --index "${arg_INDEX}")
    endif()
    if("C" IN_LIST arg_LANGUAGES)
        list(APPEND flags --c)
    endif()

    set(compiler quorvapixdr::quorvaxdrc)
    if(QUORVA_COMPILER)
        set(compiler "${QUORVA_COMPILER}")
    elseif(NOT TARGET ${compiler})
        message(FATAL_ERROR "${called}: this installation has no quorvaxdrc, because it was cross-built; set "
            "QUORVA_COMPILER to the path of one")
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
    set(scope DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
    if(DEFINED arg_TARGET)
        list(APPEND scope TARGET_DIRECTORY ${arg_TARGET})
    endif()
    set_source_files_properties(${units} ${descriptions} ${documentation} ${scope} PROPERTIES GENERATED ON
        COMPILE_OPTIONS -fvisibility=hidden INCLUDE_DIRECTORIES "${out}/private;${out}/include")
    if(DEFINED arg_TARGET)
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

cmake_policy(POP)
