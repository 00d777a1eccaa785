#pragma once

#include <memory>
#include <QAbstractItemModel>
#include <QQmlEngine>
#include <QStringList>
#include <QVariantMap>

/// A front end as an instrument has it: a QML engine that imports the real module. Knows the module by its
/// QML names alone and links nothing of ours.
class FrontEnd
{
public:
    /// Imports the module and takes the singleton into use.
    FrontEnd();
    ~FrontEnd();

    QQmlEngine& engine() { return m_engine; }

    /// A page of the front end: the object of this QML text, with these properties. Null, after a warning, if the text
    /// is none. To end before the front end does.
    std::unique_ptr<QObject> page(const QByteArray& qml, const QVariantMap& properties = {});

    /// The singleton `JobManager`; null if the module could not be used. Owned by the engine.
    QObject* manager() const { return m_manager; }
    /// The singleton as the model of all jobs.
    QAbstractItemModel* jobs() const { return qobject_cast<QAbstractItemModel*>(m_manager); }
    /// One of the two views, "requiredJobs" or "archivedJobs".
    QAbstractItemModel* view(const char* property) const;

    /// The job ids of a model of jobs, in row order.
    static QStringList ids(const QAbstractItemModel* model);
    /// The `Job` object of an id, null if it has no row.
    QObject* job(const QString& id) const;

private:
    QQmlEngine m_engine;
    std::unique_ptr<QObject> m_root;
    QObject* m_manager = nullptr;
};
