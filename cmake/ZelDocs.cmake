# The target "docs": pages of the public headers and the pages for readers, as HTML. Part of no other
# build, and only there when Doxygen is.

find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    return()
endif()

get_target_property(zel_doxygen_input ZelMain HEADER_SET)
file(GLOB pages CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/*.md")
list(APPEND zel_doxygen_input ${pages}
    "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
    "${PROJECT_SOURCE_DIR}/CONTRIBUTING.md"
    "${PROJECT_SOURCE_DIR}/README.md"
    "${PROJECT_SOURCE_DIR}/SECURITY.md")
list(TRANSFORM zel_doxygen_input PREPEND "\"")
list(TRANSFORM zel_doxygen_input APPEND "\"")
list(JOIN zel_doxygen_input " " zel_doxygen_input)
configure_file("${PROJECT_SOURCE_DIR}/docs/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)

add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -E make_directory "${PROJECT_BINARY_DIR}/docs"
    COMMAND Doxygen::doxygen "${PROJECT_BINARY_DIR}/Doxyfile"
    COMMENT "Writing ${PROJECT_BINARY_DIR}/docs/html/index.html"
    VERBATIM)
