# Debian packages of the programs and of what developers need, made by CPack.

set(CPACK_PACKAGE_NAME coordworkspace)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
include(CPack)
