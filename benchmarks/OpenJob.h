#pragma once

#include "benchmarks/WatchedApplication.h"
#include "tests/end_to_end/FrontEnd.h"

#include <functional>
#include <future>
#include <memory>
#include <QByteArray>
#include <QSignalSpy>
#include <QString>
#include <vector>

/// A front end with the one generated job of the service open, and all that can happen to it there. Ends the program
/// if something does not come about. Main thread.
class OpenJob
{
public:
    enum Kind {
        WithoutItems, ///< what the demo's page reads and computes, without anything to see
        InTheDemo, ///< the demo's own window
    };

    /// Something that makes the front end work.
    struct Update
    {
        const char* name;
        std::function<void(int round)> begin;
        std::function<bool()> isOver;
    };

    /// Opens the job and waits until it is there.
    OpenJob(WatchedApplication& application, Kind kind);
    ~OpenJob();

    /// The longest hold while the job was opened, its fetch included.
    WatchedApplication::Longest opening() const { return m_opening; }
    /// What comes from the service.
    std::vector<Update> updates();
    /// What a person does to the list.
    std::vector<Update> acts();
    /// The longest hold of each round, the loop being at rest before and after it.
    std::vector<WatchedApplication::Longest> measure(const Update& update, int rounds);
    /// The longest hold for each frame of a flick through the list. For the demo alone.
    std::vector<WatchedApplication::Longest> flick(int frames);

private:
    void open(Kind kind);
    void openPage(Kind kind);
    QAbstractItemModel* list() const;
    bool atRest() const;
    /// Does this inside the event loop, and lets that turn until the condition holds.
    void doUntil(const char* what, const std::function<void()>& act, const std::function<bool()>& condition);
    void turnFor(int milliseconds);

    /// Forgets what has happened so far.
    void forget();
    void updateAll(bool full);
    void setOnPage(const char* property, const QVariant& value);
    void sendResult(int round);
    void sendJob();
    /// Changes something in the service, as somebody else would, off the main thread.
    void send(const std::string& method, const std::string& path, const std::string& body);
    bool wasAccepted();

    WatchedApplication& m_application;
    FrontEnd m_frontEnd;
    WatchedApplication::Longest m_opening;
    /// The page without items, or the demo's window.
    std::unique_ptr<QObject> m_root;
    QString m_jobID;
    QObject* m_job = nullptr;
    QObject* m_page = nullptr;
    QObject* m_feed = nullptr;
    std::unique_ptr<QSignalSpy> m_rebuilds;
    std::unique_ptr<QSignalSpy> m_reloads;
    std::unique_ptr<QSignalSpy> m_announcements;
    std::future<int> m_answer;
};
