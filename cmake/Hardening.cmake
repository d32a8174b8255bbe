# Hardens all code of the build, the archives that other libraries link included: stack protector, probes of large stack
# frames, checked indirect branches (Intel CET, Arm BTI and PAC), and tables of addresses that are resolved when the
# program starts and read-only from then on. Flags that compiler or linker do not know are left out. Sanitizers bring
# their own checks.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)

option(QUORVA_HARDEN "Harden the code (see cmake/Hardening.cmake)" ON)
if(QUORVA_HARDEN AND NOT QUORVA_SANITIZE)
    set(flags -fstack-protector-strong -fstack-clash-protection)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)")
        list(APPEND flags -mbranch-protection=standard)
    elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
        list(APPEND flags -fcf-protection)
    endif()
    foreach(flag IN LISTS flags)
        string(MAKE_C_IDENTIFIER "QUORVA_HAS${flag}" known)
        check_cxx_compiler_flag("${flag}" ${known})
        if(${known})
            add_compile_options("${flag}")
        endif()
    endforeach()
    foreach(flag IN ITEMS relro now)
        check_linker_flag(CXX "LINKER:-z,${flag}" QUORVA_LINKS_${flag})
        if(QUORVA_LINKS_${flag})
            add_link_options("LINKER:-z,${flag}")
        endif()
    endforeach()
endif()
