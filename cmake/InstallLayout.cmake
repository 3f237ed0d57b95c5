# What `cmake --install` lays out around the programs: where the private libraries and
# plug-ins go, how installed programs find them, and the desktop integration (desktop
# entries, MIME type, D-Bus service, man pages, bash completion).
#
# Everything Galley finds at run time is found relative to its own executable
# (<bin>/../lib/galley/plug-ins), so an installed tree works from any prefix and can be
# moved; only the desktop files name programs by absolute path, as their formats require,
# and those are written at install time for the prefix actually installed into.

if(NOT CMAKE_INSTALL_LIBDIR STREQUAL "lib")
    message(WARNING "CMAKE_INSTALL_LIBDIR is '${CMAKE_INSTALL_LIBDIR}': an installed galley "
        "looks for its plug-ins only in <bin>/../lib/galley/plug-ins.")
endif()
set(VLM_INSTALL_PKGLIBDIR "${CMAKE_INSTALL_LIBDIR}/galley")
set(VLM_INSTALL_PLUGINDIR "${VLM_INSTALL_PKGLIBDIR}/plug-ins")
set(VLM_PACKAGE_NAME "galley-vellumine")
set(VLM_PACKAGE_MAINTAINER "Galley and Vellumine maintainers <maintainers@galley.example.org>"
    CACHE STRING "Maintainer named in the Debian package and its changelog")

# vlm_install_configured_file(INPUT file.in NAME name DESTINATION dir)
# Installs INPUT with @GALLEY_EXEC@ and @VELLUMINE_EXEC@ replaced by the absolute paths of
# the installed programs, worked out when installing, so that `cmake --install --prefix`
# and the package's /usr prefix both get the right Exec lines.
function(vlm_install_configured_file)
    cmake_parse_arguments(F "" "INPUT;NAME;DESTINATION" "" ${ARGN})
    set(staged "${CMAKE_CURRENT_BINARY_DIR}/install-time/${F_NAME}")
    install(CODE "
        get_filename_component(_prefix \"\${CMAKE_INSTALL_PREFIX}\" ABSOLUTE)
        set(GALLEY_EXEC \"\${_prefix}/${CMAKE_INSTALL_BINDIR}/galley\")
        set(VELLUMINE_EXEC \"\${_prefix}/${CMAKE_INSTALL_BINDIR}/vellumine\")
        configure_file(\"${F_INPUT}\" \"${staged}\" @ONLY)
        file(INSTALL \"${staged}\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${F_DESTINATION}\")")
endfunction()

# vlm_install_man_page(source.1): the page with the project's version filled in, compressed
# as man and Debian expect.
function(vlm_install_man_page source)
    get_filename_component(name "${source}" NAME)
    string(REGEX REPLACE ".*\\.([0-9])$" "\\1" section "${name}")
    set(page "${PROJECT_BINARY_DIR}/man/${name}")
    configure_file("${source}" "${page}" @ONLY)
    # -n keeps the file's name and time out of the archive: the same page, the same bytes.
    execute_process(COMMAND gzip -9 -n -f "${page}" RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "gzip could not compress ${page}")
    endif()
    install(FILES "${page}.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}")
endfunction()

# Called once every target exists: installed programs and libraries find the project's
# shared libraries through a RUNPATH relative to themselves ($ORIGIN), never through
# LD_LIBRARY_PATH.
function(vlm_install_layout)
    file(RELATIVE_PATH bin_to_libs "/${CMAKE_INSTALL_BINDIR}" "/${VLM_INSTALL_PKGLIBDIR}")
    foreach(program IN ITEMS galley vellumine notifyutil)
        if(TARGET ${program})
            set_property(TARGET ${program} PROPERTY INSTALL_RPATH "$ORIGIN/${bin_to_libs}")
        endif()
    endforeach()
    # A library's own RUNPATH finds the libraries it needs in turn (libgalley-foundation
    # needs libgalley-sdk): an executable's RUNPATH does not reach that far.
    foreach(library IN ITEMS vlm_sdk vlm_foundation vlm_platform)
        set_property(TARGET ${library} PROPERTY INSTALL_RPATH "$ORIGIN")
    endforeach()
    if(TARGET vellumine-link)
        set_property(TARGET vellumine-link PROPERTY INSTALL_RPATH "$ORIGIN/..")
    endif()

    set(packaging "${PROJECT_SOURCE_DIR}/packaging")
    set(datadir "${CMAKE_INSTALL_DATADIR}")
    if(TARGET galley)
        vlm_install_configured_file(INPUT "${packaging}/org.galley.Galley.desktop.in"
            NAME org.galley.Galley.desktop DESTINATION "${datadir}/applications")
        install(FILES "${packaging}/org.galley.Galley.svg"
            DESTINATION "${datadir}/icons/hicolor/scalable/apps")
        install(FILES "${packaging}/org.galley.Galley.png"
            DESTINATION "${datadir}/icons/hicolor/256x256/apps")
        install(FILES "${packaging}/org.galley.Galley.mime.xml"
            DESTINATION "${datadir}/mime/packages" RENAME org.galley.Galley.xml)
        vlm_install_man_page("${PROJECT_SOURCE_DIR}/docs/man/galley.1")
        install(FILES "${packaging}/completions/galley"
            DESTINATION "${datadir}/bash-completion/completions")
    endif()
    if(TARGET notifyutil)
        vlm_install_man_page("${PROJECT_SOURCE_DIR}/docs/man/notifyutil.1")
    endif()
    if(TARGET vellumine)
        vlm_install_configured_file(INPUT "${packaging}/org.vellumine.Vellumine.service.in"
            NAME org.vellumine.Vellumine.service DESTINATION "${datadir}/dbus-1/services")
        # The window's menu entry, its AppStream description, and the systemd user unit the
        # D-Bus service names (where Debian puts user units; systemd also reads
        # $XDG_DATA_HOME/systemd/user for a per-user prefix).
        vlm_install_configured_file(INPUT "${packaging}/org.vellumine.Vellumine.desktop.in"
            NAME org.vellumine.Vellumine.desktop DESTINATION "${datadir}/applications")
        install(FILES "${packaging}/org.vellumine.Vellumine.metainfo.xml"
            DESTINATION "${datadir}/metainfo")
        vlm_install_configured_file(INPUT "${packaging}/vellumine.service.in"
            NAME vellumine.service DESTINATION "lib/systemd/user")
        vlm_install_man_page("${PROJECT_SOURCE_DIR}/docs/man/vellumine.1")
        install(FILES "${packaging}/completions/vellumine"
            DESTINATION "${datadir}/bash-completion/completions")
    endif()
endfunction()
