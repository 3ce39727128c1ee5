# Configures the build of the macOS sources with the test bed. This file must be included directly after project().

find_program(GNUSTEP_CONFIG gnustep-config REQUIRED)
execute_process(COMMAND "${GNUSTEP_CONFIG}" --objc-flags OUTPUT_VARIABLE gnustep_flags OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND "${GNUSTEP_CONFIG}" --gui-libs OUTPUT_VARIABLE gnustep_libraries OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT gnustep_flags OR NOT gnustep_libraries)
    message(FATAL_ERROR "gnustep-config printed no flags; it requires make")
endif()
separate_arguments(gnustep_flags)
separate_arguments(gnustep_libraries)
list(FILTER gnustep_flags EXCLUDE REGEX "^(-MMD|-MP|-g|-O2|-Wall|-Wno-import|-I\\.|-I.*/GNUstep/Library/Headers)$")

set(CMAKE_OBJCXX_COMPILER "${CMAKE_CXX_COMPILER}")
enable_language(OBJCXX)

# These headers extend the GNUstep headers of the same names, so the compiler must find them first.
include_directories(BEFORE "${CMAKE_CURRENT_LIST_DIR}/headers")
add_compile_options("SHELL:-include ${CMAKE_CURRENT_LIST_DIR}/prefix.h")
foreach(flag IN LISTS gnustep_flags)
    add_compile_options("$<$<COMPILE_LANGUAGE:OBJCXX>:${flag}>")
endforeach()
# Use GCC's headers of libobjc.
file(GLOB objc_headers /usr/lib/gcc/*/*/include/objc)
list(GET objc_headers -1 objc_headers)
file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/objc-headers")
file(CREATE_LINK "${objc_headers}" "${CMAKE_BINARY_DIR}/objc-headers/objc" SYMBOLIC)
# Compile with blocks and with GCC's Objective-C runtime. Treat unknown selectors as errors, as Apple's compiler does.
foreach(flag -fblocks -fobjc-runtime=gcc -Werror=objc-method-access
    "SHELL:-isystem ${CMAKE_BINARY_DIR}/objc-headers" "SHELL:-isystem /usr/include/GNUstep")
    string(REPLACE "SHELL:" "" bare "${flag}")
    if(bare STREQUAL flag)
        add_compile_options("$<$<COMPILE_LANGUAGE:OBJCXX>:${flag}>")
    else()
        add_compile_options("SHELL:$<$<COMPILE_LANGUAGE:OBJCXX>:${bare}>")
    endif()
endforeach()

set(ZQTUTIL_GNUSTEP_LIBRARIES ${gnustep_libraries} BlocksRuntime)
set(ZQTUTIL_TESTBED "${CMAKE_CURRENT_LIST_DIR}")
set(ZQTUTIL_PLATFORM mac)
set(ZQTUTIL_APPLE_LIBRARIES cocoa-testbed)
