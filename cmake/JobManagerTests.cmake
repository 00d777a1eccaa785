# jobmanager_add_test(<name> [QT | GTEST] [THREADS] [TIMEOUT <seconds>] [PARTS <number>]
#                     SOURCES <file>... [LIBRARIES <target>...] [ENVIRONMENT <name=value>...])
#
# One test program and its CTest entry. QT: a QtTest program, warnings and moc as for our own Qt code.
# GTEST: a GoogleTest program with gtest's own main. THREADS: code that runs on two threads;
# the thread sanitizer runs these (label "threads"). PARTS: a long program that CTest runs so many times, each with
# its part of the work (JOBMANAGER_TEST_PART, from 0 to JOBMANAGER_TEST_PARTS - 1).
function(jobmanager_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "QT;GTEST;THREADS" "TIMEOUT;PARTS" "SOURCES;LIBRARIES;ENVIRONMENT")
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES})
    if(ARG_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_link_libraries(${name} PRIVATE jobmanager_qt_flags Qt5::Test)
    else()
        target_link_libraries(${name} PRIVATE jobmanager_build_flags GTest::gmock GTest::gtest_main)
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    set(environment
        QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software LC_ALL=C.UTF-8 QT_LOGGING_TO_CONSOLE=1
        QML2_IMPORT_PATH=${JOBMANAGER_QML_DIR}:${JOBMANAGER_QT_QML_DIR}
        # A QtCore of another prefix (the one built for the thread sanitizer) finds the plugins only so.
        QT_PLUGIN_PATH=${JOBMANAGER_QT_PLUGIN_DIR} ${ARG_ENVIRONMENT})
    if(ARG_PARTS)
        math(EXPR last "${ARG_PARTS} - 1")
        foreach(part RANGE ${last})
            _jobmanager_add_run(${name}${part} "${environment};JOBMANAGER_TEST_PARTS=${ARG_PARTS};JOBMANAGER_TEST_PART=${part}")
        endforeach()
    else()
        _jobmanager_add_run(${name} "${environment}")
    endif()
    if(ARG_THREADS)
        add_dependencies(thread_tests ${name})
    endif()
endfunction()

# One run of the test program of the function above, whose variables it sees.
function(_jobmanager_add_run test environment)
    set(file ${PROJECT_BINARY_DIR}/test-results/${test}.xml)
    if(ARG_QT)
        # The text on the terminal, and the file for tools.
        add_test(NAME ${test} COMMAND ${name} -o -,txt -o ${file},junitxml)
    else()
        add_test(NAME ${test} COMMAND ${name} --gtest_output=xml:${file})
    endif()
    set_tests_properties(${test} PROPERTIES TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT "${environment}")
    if(ARG_THREADS)
        set_tests_properties(${test} PROPERTIES LABELS threads)
    endif()
endfunction()

# Everything that the thread sanitizer runs.
add_custom_target(thread_tests)

file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/test-results)

get_target_property(_qmake Qt5::qmake IMPORTED_LOCATION)
execute_process(COMMAND ${_qmake} -query QT_INSTALL_QML
    OUTPUT_VARIABLE JOBMANAGER_QT_QML_DIR OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${_qmake} -query QT_INSTALL_PLUGINS
    OUTPUT_VARIABLE JOBMANAGER_QT_PLUGIN_DIR OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${_qmake} -query QT_INSTALL_BINS
    OUTPUT_VARIABLE _qt_bin_dir OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
# Makes catalogues of translations.
find_program(JOBMANAGER_LRELEASE lrelease PATHS ${_qt_bin_dir} NO_DEFAULT_PATH REQUIRED)
