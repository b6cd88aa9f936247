# What is installed, and where. Components: programs, development, documentation.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# Each distribution has its own folder for the completions that packages bring.
set(ZEL_INSTALL_ZSHDIR "${CMAKE_INSTALL_DATAROOTDIR}/zsh/site-functions" CACHE STRING
    "Folder for the completions of zsh")
set(zel_bash_folder "${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions")
set(zel_fish_folder "${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d")
set(zel_schema_folder "${CMAKE_INSTALL_DATAROOTDIR}/coordworkspace/schemas")

# Makes PROJECT_BINARY_DIR/man/NAME.1 of docs/man/NAME.1, whose title gets the version.
function(zel_complete_man_page name)
    set(source "${PROJECT_SOURCE_DIR}/docs/man/${name}.1")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
    file(READ "${source}" page)
    string(TOUPPER "${name}" title)
    set(line ".TH ${title} 1 \"\" \"${name} ${PROJECT_VERSION}\" \"Workspace section converter\"\n")
    string(REGEX REPLACE "\\.TH [^\n]*\n" "${line}" page "${page}")
    file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/man/${name}.1" CONTENT "@page@" @ONLY
        NEWLINE_STYLE UNIX)
endfunction()

# Lets an installed program in the folder find a shared ZelMain from where the two lie.
function(zel_find_installed_libraries target folder)
    if(BUILD_SHARED_LIBS)
        file(RELATIVE_PATH libraries "/${folder}" "/${CMAKE_INSTALL_LIBDIR}")
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    endif()
endfunction()

# Installs a program that only PROGRAM runs where no user looks for commands. PROGRAM finds it from
# its own folder by the path in its constant HELPER_PATH, and it finds PROGRAM's folder by that in
# PROGRAMS_PATH, installed and moved as in the build.
function(zel_install_helper target program)
    set(folder "${CMAKE_INSTALL_LIBEXECDIR}/coordworkspace")
    set_property(GLOBAL APPEND PROPERTY ZEL_HELPERS "${folder}/${target}")
    file(RELATIVE_PATH from_program "/${CMAKE_INSTALL_BINDIR}" "/${folder}")
    set_target_properties(${target} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY "$<TARGET_FILE_DIR:${program}>/${from_program}")
    target_compile_definitions(${program} PRIVATE HELPER_PATH="${from_program}/${target}")
    file(RELATIVE_PATH to_program "/${folder}" "/${CMAKE_INSTALL_BINDIR}")
    target_compile_definitions(${target} PRIVATE PROGRAMS_PATH="${to_program}")
    add_dependencies(${program} ${target})
    zel_find_installed_libraries(${target} "${folder}")
    if(ZEL_INSTALL)
        install(TARGETS ${target} RUNTIME DESTINATION "${folder}" COMPONENT programs)
    endif()
endfunction()

# Installs a program with its man page and its completions. Tests go over the programs of the
# global property ZEL_PROGRAMS.
function(zel_install_program target)
    set_property(GLOBAL APPEND PROPERTY ZEL_PROGRAMS ${target})
    zel_complete_man_page(${target})
    zel_find_installed_libraries(${target} "${CMAKE_INSTALL_BINDIR}")
    if(NOT ZEL_INSTALL)
        return()
    endif()
    set(completions "${PROJECT_SOURCE_DIR}/completions")
    install(TARGETS ${target} RUNTIME COMPONENT programs)
    install(FILES "${PROJECT_BINARY_DIR}/man/${target}.1"
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT programs)
    install(FILES "${completions}/bash/${target}"
        DESTINATION "${zel_bash_folder}" COMPONENT programs)
    install(FILES "${completions}/zsh/_${target}"
        DESTINATION "${ZEL_INSTALL_ZSHDIR}" COMPONENT programs)
    install(FILES "${completions}/fish/${target}.fish"
        DESTINATION "${zel_fish_folder}" COMPONENT programs)
endfunction()

# Takes out what only the optimiser of this one compiler reads: the installed archive holds machine
# code, which any compiler's programs can link.
function(zel_install_machine_code_only target)
    install(CODE "execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND \"${CMAKE_OBJCOPY}\"
        --enable-deterministic-archives --wildcard
        --remove-section=.comment --remove-section=.gnu.lto_* --remove-section=.gnu.debuglto_*
        --strip-symbol=__gnu_lto_slim --strip-symbol=__gnu_lto_v1
        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:${target}>\")"
        COMPONENT development)
endfunction()

# Installs ZelMain with its headers and what finds it: a CMake package and a pkg-config file.
function(zel_install_library)
    set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/ZelMain")
    install(TARGETS ZelMain EXPORT ZelMainTargets
        ARCHIVE COMPONENT development
        LIBRARY COMPONENT programs NAMELINK_COMPONENT development
        FILE_SET HEADERS COMPONENT development)
    if(ZEL_IPO_SUPPORTED AND NOT BUILD_SHARED_LIBS)
        zel_install_machine_code_only(ZelMain)
    endif()

    install(EXPORT ZelMainTargets NAMESPACE ZelMain:: DESTINATION "${package_folder}"
        COMPONENT development)
    configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/ZelMainConfig.cmake.in"
        "${PROJECT_BINARY_DIR}/ZelMainConfig.cmake" INSTALL_DESTINATION "${package_folder}")
    # Before 1.0 every minor version may break programs.
    write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZelMainConfigVersion.cmake"
        COMPATIBILITY SameMinorVersion)
    install(FILES
            "${PROJECT_BINARY_DIR}/ZelMainConfig.cmake"
            "${PROJECT_BINARY_DIR}/ZelMainConfigVersion.cmake"
        DESTINATION "${package_folder}" COMPONENT development)

    file(RELATIVE_PATH zel_prefix_from_pkgconfig "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
    string(REGEX REPLACE "/$" "" zel_prefix_from_pkgconfig "${zel_prefix_from_pkgconfig}")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/ZelMain.pc.in" "${PROJECT_BINARY_DIR}/ZelMain.pc"
        @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/ZelMain.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endfunction()

# Installs the pages for readers with what they link to, and the schemas.
function(zel_install_documentation)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/schemas/" DESTINATION "${zel_schema_folder}"
        COMPONENT programs)
    install(FILES
            "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
            "${PROJECT_SOURCE_DIR}/CONTRIBUTING.md"
            "${PROJECT_SOURCE_DIR}/COPYRIGHT"
            "${PROJECT_SOURCE_DIR}/README.md"
            "${PROJECT_SOURCE_DIR}/SECURITY.md"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation)
    install(DIRECTORY
            "${PROJECT_SOURCE_DIR}/docs"
            "${PROJECT_SOURCE_DIR}/examples"
            "${PROJECT_SOURCE_DIR}/samples"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation)
    # There when the target "docs" was built.
    install(DIRECTORY "${PROJECT_BINARY_DIR}/docs/html" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT documentation OPTIONAL)
endfunction()

if(ZEL_INSTALL)
    zel_install_documentation()
endif()
