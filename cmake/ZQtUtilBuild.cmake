# Compiler settings for all targets.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_OBJCXX_STANDARD ${CMAKE_CXX_STANDARD})
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

option(ZQTUTIL_WERROR "Warnings are errors" OFF)
option(ZQTUTIL_PCH "Precompile Qt's headers" OFF)
option(ZQTUTIL_REPRODUCIBLE "Keep the build machine's paths out of debug information too" OFF)
set(ZQTUTIL_SANITIZE "" CACHE STRING "Sanitizers for every target, as -fsanitize= takes them")

if(ZQTUTIL_SANITIZE)
    add_compile_options(-fsanitize=${ZQTUTIL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ZQTUTIL_SANITIZE})
endif()

if(ZQTUTIL_PCH AND CMAKE_CXX_COMPILER_ID MATCHES Clang)
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
endif()

# zqtutil_target(<target> [PREFIX <folder>])
#
# Enables compiler warnings for <target>, and disables error-prone and deprecated parts of Qt's API. Makes __FILE__
# relative to <folder>, so that log messages do not contain paths of the build machine. <folder> defaults to the root of
# the source tree.
function(zqtutil_target target)
    cmake_parse_arguments(arg "" "PREFIX" "" ${ARGN})
    if(NOT arg_PREFIX)
        set(arg_PREFIX "${PROJECT_SOURCE_DIR}")
    endif()
    set(prefix_map -fmacro-prefix-map)
    if(ZQTUTIL_REPRODUCIBLE)
        set(prefix_map -ffile-prefix-map)
    endif()
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion
        $<$<BOOL:${ZQTUTIL_WERROR}>:-Werror>
        ${prefix_map}=${PROJECT_BINARY_DIR}/=
        ${prefix_map}=${arg_PREFIX}/=)
    target_compile_definitions(${target} PRIVATE
        QT_NO_KEYWORDS
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_TO_ASCII
        QT_NO_CAST_FROM_BYTEARRAY
        QT_NO_URL_CAST_FROM_STRING
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
        QT_NO_FOREACH
        QT_STRICT_ITERATORS
        QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
endfunction()

# zqtutil_precompile(<target> <header>...)
#
# Precompiles the headers for <target> if the option ZQTUTIL_PCH is on.
function(zqtutil_precompile target)
    if(ZQTUTIL_PCH)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()
