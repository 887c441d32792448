# The packages, one for each component: the program; apart from it the virtual pad and the documents for machines without the
# hardware; and the settings that close the service's doors. As .deb and as .rpm; scripts/package.sh builds them.

find_program(GZIP gzip)
if(NOT GZIP)
    message(FATAL_ERROR "gzip is needed to compress what the packages hold")
endif()

# Compresses a file the way Debian's packages hold it: mvsignpad_compressed(FILE).
function(mvsignpad_compressed file)
    add_custom_command(OUTPUT "${file}.gz"
                       COMMAND ${GZIP} -9nc "${CMAKE_CURRENT_SOURCE_DIR}/${file}" > "${file}.gz"
                       DEPENDS "${file}")
    add_custom_target("compressed-${file}" ALL DEPENDS "${CMAKE_CURRENT_BINARY_DIR}/${file}.gz")
endfunction()

mvsignpad_compressed(changelog)
mvsignpad_compressed(mvsignctl.1)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/mvsignctl.1.gz" DESTINATION usr/share/man/man1 COMPONENT mvsignpad)
mvsignpad_compressed(mvsignctl.zh_CN.1)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/mvsignctl.zh_CN.1.gz" RENAME mvsignctl.1.gz
        DESTINATION usr/share/man/zh_CN/man1 COMPONENT mvsignpad)

# Every package tells what has changed and who holds the rights.
foreach(package IN ITEMS mvsignpad mvsignpad-virtual mvsignpad-secure)
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/changelog.gz" copyright
            DESTINATION usr/share/doc/${package} COMPONENT ${package})
endforeach()

install(FILES lintian/mvsignpad DESTINATION usr/share/lintian/overrides COMPONENT mvsignpad)

# Not below /etc, where a removed package leaves its files and an administrator keeps his own: these settings go with the
# package, and his go before them.
install(FILES MVSignPadSDK_Access.conf DESTINATION usr/share/mvsignpadsdk COMPONENT mvsignpad-secure)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX "/")
set(CPACK_PACKAGE_CONTACT "MVSign Pad maintainers <maintainers@mvsignpad.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has a synopsis of its own
set(CPACK_COMPONENTS_ALL mvsignpad mvsignpad-virtual mvsignpad-secure)
set(CPACK_STRIP_FILES ON)
# Whatever the umask of the person who packs: a package's directories are readable by all.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CPACK_PACKAGE_CONTACT}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_SOURCE_DIR}/cpack-options.cmake")
if(CMAKE_SYSTEM_PROCESSOR STREQUAL aarch64)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
endif()

set(CPACK_DEBIAN_MVSIGNPAD_PACKAGE_NAME mvsignpad)
set(CPACK_DEBIAN_MVSIGNPAD_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_MVSIGNPAD_PACKAGE_DEPENDS procps) # pgrep, which finds a copy that is already running
set(program_synopsis "capture of handwritten signatures from a USB signature pad")
set(program_description "A tray program of the logged-in user's desktop that lets a web page or the WPS
office suite capture a handwritten signature from a USB signature pad.

The signature pad's own library, libmvsignpadsdk.so, comes from the maker of
the pad and is copied into /opt/mvsignpad beside the program.

The package also brings mvsignctl, the command-line client of the service.")
set(CPACK_DEBIAN_MVSIGNPAD_DESCRIPTION "${program_synopsis}\n${program_description}")

set(CPACK_DEBIAN_MVSIGNPAD-VIRTUAL_PACKAGE_NAME mvsignpad-virtual)
set(CPACK_DEBIAN_MVSIGNPAD-VIRTUAL_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_MVSIGNPAD-VIRTUAL_PACKAGE_SUGGESTS mvsignpad)
set(virtual_synopsis "software signature pad and documents for mvsignpad")
set(virtual_description "A stand-in for the library of the signature pad's maker, for developing and
testing on machines without the hardware, together with the documents for
administrators, packagers and developers of web pages.

The stand-in lies in /usr/lib/mvsignpad/virtual and is never put in the place
of the maker's library by itself.")
set(CPACK_DEBIAN_MVSIGNPAD-VIRTUAL_DESCRIPTION "${virtual_synopsis}\n${virtual_description}")

set(CPACK_DEBIAN_MVSIGNPAD-SECURE_PACKAGE_NAME mvsignpad-secure)
set(CPACK_DEBIAN_MVSIGNPAD-SECURE_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_MVSIGNPAD-SECURE_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_MVSIGNPAD-SECURE_PACKAGE_DEPENDS "mvsignpad (>= ${PROJECT_VERSION})") # an older one does not look there
set(secure_synopsis "settings that close the doors of mvsignpad")
set(secure_description "Machine-wide settings with which the signature service is reached from this
machine alone, asks the user before it serves a web page, and saves files
below /tmp only.

Removing the package opens what it has closed.")
set(CPACK_DEBIAN_MVSIGNPAD-SECURE_DESCRIPTION "${secure_synopsis}\n${secure_description}")

include(RpmPackages.cmake)
include(CPack)
