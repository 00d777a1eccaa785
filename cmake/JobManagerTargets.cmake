# What every target of ours has in common.

add_library(jobmanager_build_flags INTERFACE)
target_compile_options(jobmanager_build_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wdouble-promotion -Werror
    # Qt's qCDebug(category) leaves the dots of its macro empty, which is standard only from C++20 on.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
# Includes are written from the root: #include "models/Job.h".
target_include_directories(jobmanager_build_flags INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)

add_library(jobmanager_qt_flags INTERFACE)
target_link_libraries(jobmanager_qt_flags INTERFACE jobmanager_build_flags)
target_compile_definitions(jobmanager_qt_flags INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_STRICT_ITERATORS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
