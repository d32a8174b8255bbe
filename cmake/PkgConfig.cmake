# quorva_pkg_config(<name> <component>): completes cmake/<name>.pc.in and installs it. The file finds the
# installed folders from its own, so the prefix may be moved.
function(quorva_pkg_config name component)
    set(here "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
    set(PREFIX "${CMAKE_INSTALL_PREFIX}")
    foreach(folder IN ITEMS BINDIR DATADIR INCLUDEDIR LIBDIR)
        set(${folder} "${CMAKE_INSTALL_FULL_${folder}}")
    endforeach()
    foreach(folder IN ITEMS PREFIX BINDIR DATADIR INCLUDEDIR LIBDIR)
        cmake_path(RELATIVE_PATH ${folder} BASE_DIRECTORY "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
    endforeach()
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${name}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT ${component})
endfunction()
