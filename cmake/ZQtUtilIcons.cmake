# zqtutil_render_icons(<target> BASE <folder> SIZES <path>=<pixels>...)
#
# Renders each icon <folder>/<path>.svg to two PNG files: one with a width and height of <pixels>, and one with twice
# that size for high-resolution screens. Adds the files to the resources of <target> as ":/<path>.png" and
# ":/<path>@2x.png".
find_program(ZQTUTIL_RSVG_CONVERT rsvg-convert)

function(zqtutil_render_icons target)
    cmake_parse_arguments(arg "" "BASE" "SIZES" ${ARGN})
    if(NOT ZQTUTIL_RSVG_CONVERT)
        message(FATAL_ERROR "rsvg-convert renders the icons: install librsvg2-bin (Debian) or librsvg (Homebrew)")
    endif()
    set(base "${CMAKE_CURRENT_SOURCE_DIR}/${arg_BASE}")
    set(folder "${CMAKE_CURRENT_BINARY_DIR}/${target}-icons")
    set(entries "")
    foreach(icon IN LISTS arg_SIZES)
        string(REGEX MATCH "^(.*)=(.*)$" matched "${icon}")
        set(path "${CMAKE_MATCH_1}")
        set(size "${CMAKE_MATCH_2}")
        cmake_path(GET path PARENT_PATH parent)
        file(MAKE_DIRECTORY "${folder}/${parent}")
        math(EXPR double "2 * ${size}")
        foreach(variant IN ITEMS "=${size}" "@2x=${double}")
            string(REGEX MATCH "^(.*)=(.*)$" matched "${variant}")
            set(picture "${path}${CMAKE_MATCH_1}.png")
            add_custom_command(
                OUTPUT "${folder}/${picture}"
                COMMAND "${ZQTUTIL_RSVG_CONVERT}" --width ${CMAKE_MATCH_2} --height ${CMAKE_MATCH_2}
                    --output "${folder}/${picture}" "${base}/${path}.svg"
                DEPENDS "${base}/${path}.svg"
                VERBATIM)
            string(APPEND entries "<file>${picture}</file>\n")
        endforeach()
    endforeach()
    file(CONFIGURE OUTPUT "${folder}/icons.qrc" CONTENT "<RCC><qresource prefix=\"/\">\n${entries}</qresource></RCC>\n")
    qt5_add_resources(sources "${folder}/icons.qrc")
    target_sources(${target} PRIVATE ${sources})
endfunction()
