#pragma once

#include "tests/support/PrivateMounts.h"
#include "tests/support/PrivateNetwork.h"

#include <QGuiApplication>
#include <QtTest>

/// Why this process has no network of its own, in which the module's port is free; empty if it has.
inline std::string& networkRefusal()
{
    static std::string refusal;
    return refusal;
}

/// Why this process has no view of the file system of its own; empty if it has.
inline std::string& mountRefusal()
{
    static std::string refusal;
    return refusal;
}

/// As END_TO_END_MAIN, with a view of the file system of the process's own as well.
#define END_TO_END_MAIN_WITH_MOUNTS(TestClass)                                                                         \
    int main(int argc, char* argv[])                                                                                   \
    {                                                                                                                  \
        mountRefusal() = jobmanager_test::enterPrivateMounts();                                                        \
        networkRefusal() = jobmanager_test::enterPrivateNetwork();                                                     \
        QGuiApplication application(argc, argv);                                                                       \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }

/// The main function of an end-to-end test: a network of its own, then the test.
#define END_TO_END_MAIN(TestClass)                                                                                     \
    int main(int argc, char* argv[])                                                                                   \
    {                                                                                                                  \
        networkRefusal() = jobmanager_test::enterPrivateNetwork();                                                     \
        QGuiApplication application(argc, argv);                                                                       \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
