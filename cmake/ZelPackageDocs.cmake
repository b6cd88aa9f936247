# Run by CPack over the files of each package, before it is built: adds the copyright file and the
# changelog in Debian's form, and packs what Debian packs.

find_program(gzip NAMES gzip REQUIRED)
find_program(python3 NAMES python3 REQUIRED)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" name)
    set(package ${CPACK_DEBIAN_${name}_PACKAGE_NAME})
    set(root "${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}")
    set(folder "${root}/share/doc/${package}")
    file(MAKE_DIRECTORY "${folder}")
    file(COPY_FILE "${CPACK_ZEL_SOURCE_DIR}/COPYRIGHT" "${folder}/copyright")
    execute_process(COMMAND "${python3}" "${CPACK_ZEL_SOURCE_DIR}/cmake/debian-changelog"
            "${CPACK_ZEL_SOURCE_DIR}/CHANGELOG.md" ${package} ${CPACK_PACKAGE_VERSION}
            "${CPACK_PACKAGE_CONTACT}"
        OUTPUT_FILE "${folder}/changelog" COMMAND_ERROR_IS_FATAL ANY)
    file(GLOB pages "${root}/share/man/man1/*.1")
    # Without the name and the time of the file.
    execute_process(COMMAND "${gzip}" -9 --no-name "${folder}/changelog" ${pages}
        COMMAND_ERROR_IS_FATAL ANY)
    # A sloppy umask of the caller ends here.
    file(GLOB_RECURSE files "${folder}/*" "${root}/share/man/*")
    file(CHMOD ${files} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endforeach()
