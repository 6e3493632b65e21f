# SPDX-License-Identifier: GPL-3.0-or-later
# One flags target for everything that is ours, and the two ways in which a target of ours is made.

add_library(kestu_flags INTERFACE)
target_compile_features(kestu_flags INTERFACE cxx_std_20)
target_include_directories(kestu_flags INTERFACE ${PROJECT_SOURCE_DIR}/KESTU)
target_compile_options(kestu_flags INTERFACE
    $<$<BOOL:${KESTU_WERROR}>:-Werror> -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -fstack-protector-strong -D_GLIBCXX_ASSERTIONS)
target_compile_definitions(kestu_flags INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_NO_URL_CAST_FROM_STRING KESTU_VERSION="${PROJECT_VERSION}")
target_link_options(kestu_flags INTERFACE -Wl,-z,relro,-z,now)

if(KESTU_SANITIZE)
    target_compile_options(kestu_flags INTERFACE
        -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    target_link_options(kestu_flags INTERFACE -fsanitize=address,undefined)
else()
    target_compile_definitions(kestu_flags INTERFACE $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
endif()

# kestu_floor(NAME SOURCES ... USES ...): one folder of the house as a static library.
function(kestu_floor name)
    cmake_parse_arguments(FLOOR "" "" "SOURCES;USES;HIDDEN" ${ARGN})
    add_library(${name} STATIC ${FLOOR_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(${name} PUBLIC kestu_flags ${FLOOR_USES} PRIVATE ${FLOOR_HIDDEN})
endfunction()
