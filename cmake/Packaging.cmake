# The Debian package: one galley-vellumine package holding Galley, its Vellumine Link
# plug-in and the vellumine font manager, which only make sense together. `cpack -G DEB`
# in a build tree (scripts/package) builds it from the same install rules as
# `cmake --install`.

# The files Debian wants with every package, installed with the others so that the package
# and an installed tree look the same.
set(_vlm_docdir "${CMAKE_INSTALL_DATADIR}/doc/${VLM_PACKAGE_NAME}")
configure_file("${PROJECT_SOURCE_DIR}/packaging/debian/changelog.in"
    "${PROJECT_BINARY_DIR}/debian/changelog" @ONLY)
execute_process(COMMAND gzip -9 -n -f "${PROJECT_BINARY_DIR}/debian/changelog"
    RESULT_VARIABLE _vlm_gzip_failed)
if(_vlm_gzip_failed)
    message(FATAL_ERROR "gzip could not compress the Debian changelog")
endif()
install(FILES "${PROJECT_SOURCE_DIR}/packaging/debian/copyright"
    "${PROJECT_BINARY_DIR}/debian/changelog.gz"
    DESTINATION "${_vlm_docdir}")

# Installing and packaging take what is built instead of building every target first (the
# test suites included): scripts/package builds exactly the installed programs.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME "${VLM_PACKAGE_NAME}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_VENDOR "Galley and Vellumine developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "IDML host with font auto-activation and a font manager")
set(CPACK_PACKAGE_DESCRIPTION
    "Galley opens IDML documents in a Qt window or headless and loads the
Vellumine Link plug-in, which asks the font manager for the fonts a document
misses and has it activate them, shows its fonts dialogs and saves font
replacements.
.
vellumine is the font manager: a font library in an SQLite catalog that
applications ask for fonts over the D-Bus session bus, with activation into a
folder fontconfig scans.")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${VLM_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION "graphics")
set(CPACK_DEBIAN_PACKAGE_PRIORITY "optional")
# Depends: from the libraries the programs are linked with (dpkg-shlibdeps), not from a
# hand-written list. The project's own libraries go into the package's private folder, so
# dpkg-shlibdeps is told where they are built, or it cannot place them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS OFF)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    "${PROJECT_BINARY_DIR}/sdk" "${PROJECT_BINARY_DIR}/foundation" "${PROJECT_BINARY_DIR}/platform")
# Not linked, but what the programs use at run time: the session bus for vellumine and the
# plug-in's conversation, fontconfig's configuration, the shared MIME database, and libpq,
# which vellumine loads only for a studio's PostgreSQL library.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "default-dbus-session-bus | dbus-session-bus, fontconfig, shared-mime-info, libpq5")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion")

include(CPack)
