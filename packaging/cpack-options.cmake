# Read by cpack before it makes a package: the dependencies are those of the libraries of the package's architecture.
if(CPACK_DEBIAN_PACKAGE_ARCHITECTURE)
    set(ENV{DEB_HOST_ARCH} "${CPACK_DEBIAN_PACKAGE_ARCHITECTURE}")
endif()
