# Reads the version of the project from the header that tells it to programs, as ZEL_VERSION.

set(zel_version_header "${CMAKE_CURRENT_LIST_DIR}/../ZelMain/Version.h")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${zel_version_header}")

set(ZEL_VERSION "")
foreach(part IN ITEMS MAJOR MINOR PATCH)
    file(STRINGS "${zel_version_header}" line REGEX "^#define ZELMAIN_VERSION_${part} [0-9]+$")
    if(NOT line)
        message(FATAL_ERROR "${zel_version_header} does not define ZELMAIN_VERSION_${part}")
    endif()
    string(REGEX REPLACE ".* " "" number "${line}")
    list(APPEND ZEL_VERSION ${number})
endforeach()
list(JOIN ZEL_VERSION "." ZEL_VERSION)
