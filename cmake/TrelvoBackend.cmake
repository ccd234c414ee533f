# One optional backend: the shared library TrelvoGUI<Name> (alias TrelvoGUI::<Name>) with its export
# header, installed as the package's component <Name> (its own export set) and with its pkg-config
# file trelvogui-<name>.pc. Backends are separate so that the core libraries never depend on a
# windowing library or toolkit.
#
#   trelvo_add_backend(<Name> SOURCES ... LINK <public libraries> DESCRIPTION <text>
#                      PKGCONFIG_REQUIRES <pkg-config modules of the framework>)
function(trelvo_add_backend name)
    cmake_parse_arguments(B "" "DESCRIPTION" "SOURCES;LINK;PKGCONFIG_REQUIRES" ${ARGN})
    string(TOLOWER ${name} lower)
    string(TOUPPER ${name} upper)
    set(target TrelvoGUI${name})
    set(generated ${CMAKE_CURRENT_BINARY_DIR}/include)
    set(export_header ${generated}/trelvogui/backends/${lower}/trelvogui_${lower}_export.h)

    add_library(${target} SHARED ${B_SOURCES})
    add_library(TrelvoGUI::${name} ALIAS ${target})
    generate_export_header(${target} BASE_NAME TRELVOGUI_${upper} EXPORT_FILE_NAME ${export_header})
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
        EXPORT_NAME ${name} INSTALL_RPATH "${TRELVOGUI_INSTALL_RPATH}")
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${generated}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    # The framework is public: a host that links the backend gets it with it.
    target_link_libraries(${target} PUBLIC TrelvoGUI ${B_LINK})
    trelvo_set_warnings(${target})

    set(headers ${B_SOURCES})
    list(FILTER headers INCLUDE REGEX "\\.h$")
    install(TARGETS ${target} EXPORT ${target}Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES ${headers} ${export_header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/trelvogui/backends/${lower})
    install(EXPORT ${target}Targets NAMESPACE TrelvoGUI:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/TrelvoGUI)
    trelvo_install_pkgconfig(trelvogui-${lower} "${B_DESCRIPTION}" "trelvogui ${B_PKGCONFIG_REQUIRES}" "-l${target}")
endfunction()
