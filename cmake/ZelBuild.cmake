# How every target of this project is compiled and linked.

include(CheckIPOSupported)
include(CheckPIESupported)

if(PROJECT_IS_TOP_LEVEL)
    if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
        set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
    endif()
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
endif()

if(ZEL_HARDENING)
    check_pie_supported(LANGUAGES CXX)
endif()

# Only gcc writes objects that hold machine code beside what the optimiser reads, so that a program
# built otherwise (a test, a foreign compiler) can link the library. Clang's would hold bitcode only.
set(ZEL_IPO_SUPPORTED OFF)
if(ZEL_LINK_TIME_OPTIMISATION AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU"
        AND NOT ZEL_SANITIZE AND NOT ZEL_COVERAGE)
    check_ipo_supported(RESULT ZEL_IPO_SUPPORTED LANGUAGES CXX)
endif()

add_library(zel_build_settings INTERFACE)
target_compile_features(zel_build_settings INTERFACE cxx_std_17)

if(ZEL_WARNINGS)
    target_compile_options(zel_build_settings INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast)
    # The keys are polymorphic values without a virtual destructor. Clang warns where Qt's containers
    # destroy them, in Qt's own headers, which no pragma of ours reaches; gcc warns of real deletes.
    target_compile_options(zel_build_settings INTERFACE
        $<$<CXX_COMPILER_ID:Clang>:-Wno-delete-non-abstract-non-virtual-dtor>)
    # Qt's QSKIP leaves out the arguments of a variadic macro, which clang takes for ours.
    target_compile_options(zel_build_settings INTERFACE
        $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
endif()

if(ZEL_HARDENING)
    target_compile_options(zel_build_settings INTERFACE -fstack-protector-strong)
    target_link_options(zel_build_settings INTERFACE
        $<$<PLATFORM_ID:Linux>:-Wl,-z,relro,-z,now>)
    # The library checks need an optimising compiler, and the sanitizers bring their own.
    if(NOT ZEL_SANITIZE)
        target_compile_options(zel_build_settings INTERFACE
            $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE>
            $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
    endif()
endif()

if(ZEL_REPRODUCIBLE)
    target_compile_options(zel_build_settings INTERFACE
        -ffile-prefix-map=${PROJECT_BINARY_DIR}=. -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
endif()

if(ZEL_SANITIZE)
    set(zel_sanitize_flags -fsanitize=${ZEL_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        list(APPEND zel_sanitize_flags
            -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/sanitizer-ignorelist.txt)
    endif()
    target_compile_options(zel_build_settings INTERFACE ${zel_sanitize_flags})
    target_link_options(zel_build_settings INTERFACE ${zel_sanitize_flags})
endif()

if(ZEL_COVERAGE)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        # Clang 18 and later also tell which conditions have decided on their own. Programs that run
        # at once share four files each: a file a process would be thousands.
        set(zel_coverage_flags -fcoverage-mapping -fcoverage-mcdc
            -fprofile-instr-generate=${CMAKE_BINARY_DIR}/profiles/%4m.profraw)
    else()
        set(zel_coverage_flags --coverage)
    endif()
    target_compile_options(zel_build_settings INTERFACE ${zel_coverage_flags})
    target_link_options(zel_build_settings INTERFACE ${zel_coverage_flags})
endif()

# Gives a target of this project its language level, warnings, hardening and instrumentation.
# They stay private: who links the library keeps their own.
function(zel_configure_target target)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:zel_build_settings>)
    target_compile_features(${target} PUBLIC cxx_std_17)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        POSITION_INDEPENDENT_CODE ON)
endfunction()

# Link-time optimisation for what is shipped.
function(zel_optimise_whole_program target)
    if(ZEL_IPO_SUPPORTED)
        set_target_properties(${target} PROPERTIES
            INTERPROCEDURAL_OPTIMIZATION_RELEASE ON
            INTERPROCEDURAL_OPTIMIZATION_RELWITHDEBINFO ON)
        target_compile_options(${target} PRIVATE
            $<$<CONFIG:Release,RelWithDebInfo>:-ffat-lto-objects>)
        # The linker compiles again, and with -fPIE a program would get copies of Qt's data
        # (QCoreApplication's instance, meta-objects) that Qt itself does not use.
        # A library's place on the command line comes after the -fPIE that it corrects.
        target_link_libraries(${target} PUBLIC
            $<BUILD_INTERFACE:$<$<CONFIG:Release,RelWithDebInfo>:-fPIC>>)
    endif()
endfunction()
