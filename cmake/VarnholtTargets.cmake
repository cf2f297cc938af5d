# Every target of the project goes through one of these functions, so that
# warnings, sanitizers and include paths are the same everywhere.

# varnholt_precompile_qt(): half of the time of a build goes into parsing Qt's headers. They are
# compiled once for the program and once, without optimisation, for the tests. A build without
# (VARNHOLT_PCH=OFF) sees whether each file includes what it uses.
function(varnholt_precompile_qt)
    if(NOT VARNHOLT_PCH OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        return()
    endif()
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/precompiled.cpp CONTENT "")
    foreach(name varnholt_precompiled varnholt_precompiled_tests)
        add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/precompiled.cpp)
        set_target_properties(${name} PROPERTIES AUTOMOC OFF)
        varnholt_options(${name})
        # Qt's include folders, without its definitions but those of the platform: the others
        # differ between targets.
        target_include_directories(${name} SYSTEM PRIVATE
            $<TARGET_PROPERTY:Qt6::Widgets,INTERFACE_INCLUDE_DIRECTORIES>
            $<TARGET_PROPERTY:Qt6::Gui,INTERFACE_INCLUDE_DIRECTORIES>
            $<TARGET_PROPERTY:Qt6::Core,INTERFACE_INCLUDE_DIRECTORIES>)
        target_compile_definitions(${name} PRIVATE $<$<NOT:$<CONFIG:Debug>>:QT_NO_DEBUG>
            $<TARGET_PROPERTY:Qt6::Platform,INTERFACE_COMPILE_DEFINITIONS>)
        target_compile_options(${name} PRIVATE -fpch-preprocess)
        target_precompile_headers(${name} PRIVATE
            <algorithm> <functional> <map> <memory> <optional> <vector>
            <QAction> <QApplication> <QCheckBox> <QComboBox> <QCoreApplication> <QDir> <QFile>
            <QFileInfo> <QGridLayout> <QImage> <QImageReader> <QKeyEvent> <QLabel> <QLineEdit>
            <QMessageBox> <QPainter> <QPushButton> <QScrollArea> <QSettings> <QSignalBlocker>
            <QString> <QStringList> <QTimer> <QVBoxLayout> <QWidget>)
    endforeach()
    target_compile_options(varnholt_precompiled_tests PRIVATE -O0)
endfunction()

# varnholt_use_precompiled(target from): for targets that link Qt.
function(varnholt_use_precompiled target from)
    if(TARGET ${from})
        target_compile_options(${target} PRIVATE -fpch-preprocess)
        target_precompile_headers(${target} REUSE_FROM ${from})
    endif()
endfunction()

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

# varnholt_library(name [PLAIN] sources...): a static library. PLAIN for C++ without Qt.
function(varnholt_library name)
    cmake_parse_arguments(L "PLAIN" "" "" ${ARGN})
    add_library(${name} STATIC ${L_UNPARSED_ARGUMENTS})
    varnholt_options(${name})
    if(L_PLAIN)
        set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    else()
        varnholt_use_precompiled(${name} varnholt_precompiled)
    endif()
endfunction()

function(varnholt_executable name)
    add_executable(${name} ${ARGN})
    varnholt_options(${name})
endfunction()

# varnholt_test(name SOURCES ... LIBRARIES ... [PLAIN] [POSIX reason] [TIMEOUT seconds] [LABELS ...])
# One GoogleTest program, registered with CTest as a whole. Without PLAIN it gets a
# main() that owns a QApplication on the off-screen platform, and the test support library.
# POSIX tests need what Windows has not; there they are skipped for that reason.
function(varnholt_test name)
    cmake_parse_arguments(T "PLAIN" "TIMEOUT;POSIX" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
    if(T_POSIX AND NOT UNIX)
        add_test(NAME ${name} COMMAND ${CMAKE_COMMAND} -E echo "skipped: ${T_POSIX}")
        set_tests_properties(${name} PROPERTIES SKIP_REGULAR_EXPRESSION "^skipped")
        return()
    endif()
    add_executable(${name} ${T_SOURCES})
    # Tests have no signals of their own: there is nothing for moc in them.
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    varnholt_options(${name})
    # Optimising code that runs once takes longer than it saves.
    target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU,Clang>:-O0>)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    if(T_PLAIN)
        target_link_libraries(${name} PRIVATE ${T_LIBRARIES} GTest::gmock GTest::gtest_main)
    else()
        varnholt_use_precompiled(${name} varnholt_precompiled_tests)
        target_link_libraries(${name} PRIVATE ${T_LIBRARIES} varnholt_test_support GTest::gmock
                              GTest::gtest)
    endif()
    add_test(NAME ${name} COMMAND ${name})
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 300)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT} LABELS "${T_LABELS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${T_ENVIRONMENT}")
    if(WIN32)
        # Under Wine some programs that crash end with the code of success.
        set_tests_properties(${name} PROPERTIES PASS_REGULAR_EXPRESSION "\\[  PASSED  \\]"
            FAIL_REGULAR_EXPRESSION "\\[  FAILED  \\]")
    endif()
endfunction()
