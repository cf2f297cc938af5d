# Every target of the project goes through one of these functions, so that
# warnings, sanitizers and include paths are the same everywhere.

function(varnholt_options target)
    target_compile_options(${target} PRIVATE
        $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow>
        $<$<AND:$<BOOL:${VARNHOLT_WERROR}>,$<CXX_COMPILER_ID:GNU,Clang>>:-Werror>
        $<$<CXX_COMPILER_ID:MSVC>:/W4 /utf-8>)
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/src)
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                               QT_NO_KEYWORDS)
    if(VARNHOLT_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${VARNHOLT_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=${VARNHOLT_SANITIZE})
    endif()
endfunction()

# varnholt_library(name sources...): a static library.
function(varnholt_library name)
    add_library(${name} STATIC ${ARGN})
    varnholt_options(${name})
endfunction()

function(varnholt_executable name)
    add_executable(${name} ${ARGN})
    varnholt_options(${name})
endfunction()

# varnholt_test(name SOURCES ... LIBRARIES ... [PLAIN] [POSIX] [TIMEOUT seconds] [LABELS ...])
# One GoogleTest program, registered with CTest as a whole. Without PLAIN it gets a
# main() that owns a QApplication on the off-screen platform, and the test support library.
# POSIX tests need calls that Windows has not, such as fork(), and are left out there.
function(varnholt_test name)
    cmake_parse_arguments(T "PLAIN;POSIX" "TIMEOUT" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
    if(T_POSIX AND NOT UNIX)
        return()
    endif()
    add_executable(${name} ${T_SOURCES})
    varnholt_options(${name})
    # Optimising code that runs once takes longer than it saves.
    target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU,Clang>:-O0>)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    if(T_PLAIN)
        target_link_libraries(${name} PRIVATE ${T_LIBRARIES} GTest::gmock GTest::gtest_main)
    else()
        target_link_libraries(${name} PRIVATE ${T_LIBRARIES} varnholt_test_support GTest::gmock
                              GTest::gtest)
    endif()
    add_test(NAME ${name} COMMAND ${name})
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 300)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT} LABELS "${T_LABELS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${T_ENVIRONMENT}")
endfunction()
