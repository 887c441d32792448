# The same packages for distributions with rpm. What they need they name by libraries' sonames, which rpm finds itself,
# so that they fit every such distribution.
set(CPACK_RPM_COMPONENT_INSTALL ON)
set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_LICENSE "Proprietary")
set(CPACK_RPM_PACKAGE_GROUP "Applications/Productivity")
# cpack's own template gives every package six empty scripts, for which rpm then asks for a shell.
set(CPACK_RPM_USER_BINARY_SPECFILE "${CMAKE_CURRENT_SOURCE_DIR}/rpm-package.in")
set(CPACK_RPM_COMPRESSION_TYPE gzip) # the oldest rpm knows no newer one
if(CMAKE_SYSTEM_PROCESSOR STREQUAL aarch64)
    set(CPACK_RPM_PACKAGE_ARCHITECTURE aarch64)
endif()

# Directories that belong to the system.
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
    /opt /usr/share/applications /usr/share/bash-completion /usr/share/bash-completion/completions /usr/share/icons
    /usr/share/icons/hicolor /usr/share/icons/hicolor/48x48 /usr/share/icons/hicolor/48x48/apps
    /usr/share/icons/hicolor/scalable /usr/share/icons/hicolor/scalable/apps /usr/share/lintian
    /usr/share/lintian/overrides /usr/share/man /usr/share/man/man1 /usr/share/man/zh_CN /usr/share/man/zh_CN/man1)

# Debian's changelog in rpm's form.
file(STRINGS changelog debian_changelog)
set(rpm_changelog "")
foreach(line IN LISTS debian_changelog)
    if(line MATCHES "^mvsignpad \\((.*)\\)")
        set(version "${CMAKE_MATCH_1}")
        set(changes "")
    elseif(line MATCHES "^  \\* (.*)")
        string(APPEND changes "- ${CMAKE_MATCH_1}\n")
    elseif(line MATCHES "^ -- (.*)  (...), (..) (...) (....) ")
        string(APPEND rpm_changelog "* ${CMAKE_MATCH_2} ${CMAKE_MATCH_4} ${CMAKE_MATCH_3} ${CMAKE_MATCH_5} "
                                    "${CMAKE_MATCH_1} - ${version}-1\n${changes}\n")
    endif()
endforeach()
file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/changelog.rpm" "${rpm_changelog}")
set(CPACK_RPM_CHANGELOG_FILE "${CMAKE_CURRENT_BINARY_DIR}/changelog.rpm")

set(CPACK_RPM_MVSIGNPAD_PACKAGE_NAME mvsignpad)
set(CPACK_RPM_MVSIGNPAD_PACKAGE_SUMMARY "${program_synopsis}")
set(CPACK_RPM_MVSIGNPAD_PACKAGE_DESCRIPTION "${program_description}")
set(CPACK_RPM_MVSIGNPAD_PACKAGE_REQUIRES /usr/bin/pgrep) # finds a copy that is already running

set(CPACK_RPM_MVSIGNPAD-VIRTUAL_PACKAGE_NAME mvsignpad-virtual)
set(CPACK_RPM_MVSIGNPAD-VIRTUAL_PACKAGE_SUMMARY "${virtual_synopsis}")
set(CPACK_RPM_MVSIGNPAD-VIRTUAL_PACKAGE_DESCRIPTION "${virtual_description}")

set(CPACK_RPM_MVSIGNPAD-SECURE_PACKAGE_NAME mvsignpad-secure)
set(CPACK_RPM_MVSIGNPAD-SECURE_PACKAGE_ARCHITECTURE noarch)
set(CPACK_RPM_MVSIGNPAD-SECURE_PACKAGE_REQUIRES "mvsignpad >= ${PROJECT_VERSION}")
set(CPACK_RPM_MVSIGNPAD-SECURE_PACKAGE_SUMMARY "${secure_synopsis}")
set(CPACK_RPM_MVSIGNPAD-SECURE_PACKAGE_DESCRIPTION "${secure_description}")
