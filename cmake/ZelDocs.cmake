# The target "docs": pages of the public headers and the pages for readers, as HTML. Part of no other
# build, and only there when Doxygen is.

find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    return()
endif()

get_target_property(headers ZelMain HEADER_SET)
file(GLOB pages CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/*.md")
set(zel_doxygen_input "")
foreach(file IN LISTS headers pages)
    cmake_path(RELATIVE_PATH file BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
    string(APPEND zel_doxygen_input " $(ZEL_TREE)/${file}")
endforeach()
foreach(file IN ITEMS CHANGELOG CONTRIBUTING README SECURITY)
    string(APPEND zel_doxygen_input " $(ZEL_TREE)/${file}.md")
endforeach()
configure_file("${PROJECT_SOURCE_DIR}/docs/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)

add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -E make_directory "${PROJECT_BINARY_DIR}/docs"
    COMMAND "${PROJECT_SOURCE_DIR}/cmake/write-docs" "${DOXYGEN_EXECUTABLE}"
        "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/Doxyfile"
    COMMENT "Writing ${PROJECT_BINARY_DIR}/docs/html/index.html"
    VERBATIM)
