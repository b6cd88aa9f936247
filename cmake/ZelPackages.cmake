# The Debian packages of the components programs and development. scripts/make-packages makes them.

set(ZEL_PACKAGE_MAINTAINER "ZelMain maintainers <maintainers@zelmain.invalid>" CACHE STRING
    "Who answers for the packages: a name and an address")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME coordworkspace)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Each package has a summary of its own, the first line of its description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_CONTACT "${ZEL_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL programs development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME coordworkspace)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS parallel)
# For archives over several machines.
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SUGGESTS "openssh-client, rsync")
set(CPACK_DEBIAN_PROGRAMS_DESCRIPTION
"convert the workspaces of wireless-microphone coordinations
Documents of a wireless-microphone frequency coordination from before section
version 0.3 keep what they know about the compatibility of wireless systems
in three places. The converter joins them into one element; an inspector
tells beforehand what a conversion will lose, and afterwards whether it was
right; whole folders are converted in a run that may be stopped at any time.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzelmain-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libboost-dev (>= ${ZEL_BOOST_VERSION}), libtinyxml2-dev, qtbase5-dev (>= ${ZEL_QT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"library for wireless-microphone frequency coordination
ZelMain has frequencies with their text forms, the compatibility profiles
and tuning capabilities of wireless systems with their XML forms, the
versions of workspace sections, and a log service. These are the static
library, its headers, a CMake package and a pkg-config file.")

# What Debian wants of each package beside what is installed elsewhere.
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/ZelPackageDocs.cmake")
set(CPACK_ZEL_SOURCE_DIR "${PROJECT_SOURCE_DIR}")

include(CPack)
