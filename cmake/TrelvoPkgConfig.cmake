# pkg-config files for hosts built without CMake (a plain Makefile with
# `pkg-config --cflags --libs trelvogui`). The prefix is found from the file's own place, so the
# installed package can be moved; the run path lets a host start without LD_LIBRARY_PATH.
function(trelvo_install_pkgconfig name description requires libs)
    file(RELATIVE_PATH TRELVO_PC_PREFIX "/root/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/root")
    string(REGEX REPLACE "/$" "" TRELVO_PC_PREFIX "${TRELVO_PC_PREFIX}")
    set(TRELVO_PC_NAME ${name})
    set(TRELVO_PC_DESCRIPTION ${description})
    set(TRELVO_PC_REQUIRES ${requires})
    set(TRELVO_PC_LIBS ${libs})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/trelvogui.pc.in ${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
