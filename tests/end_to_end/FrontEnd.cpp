#include "tests/end_to_end/FrontEnd.h"

#include <QQmlComponent>
#include <QVariant>

namespace {

int roleNamed(const QAbstractItemModel* model, const QByteArray& name)
{
    return model->roleNames().key(name);
}

} // namespace

FrontEnd::FrontEnd()
    : m_root(page("import QtQml 2.15\nimport JobManagerUi 1.0\nQtObject { property QtObject manager: JobManager }"))
{
    if (m_root)
        m_manager = m_root->property("manager").value<QObject*>();
}

FrontEnd::~FrontEnd() = default;

std::unique_ptr<QObject> FrontEnd::page(const QByteArray& qml, const QVariantMap& properties)
{
    QQmlComponent component(&m_engine);
    component.setData(qml, QUrl());
    std::unique_ptr<QObject> page(component.createWithInitialProperties(properties));
    if (!page)
        qWarning().noquote() << component.errorString();
    return page;
}

QAbstractItemModel* FrontEnd::view(const char* property) const
{
    return m_manager->property(property).value<QAbstractItemModel*>();
}

QStringList FrontEnd::ids(const QAbstractItemModel* model)
{
    const int role = roleNamed(model, "jobID");
    QStringList ids;
    for (int row = 0; row < model->rowCount(); ++row)
        ids.append(model->index(row, 0).data(role).toString());
    return ids;
}

QObject* FrontEnd::job(const QString& id) const
{
    const int row = ids(jobs()).indexOf(id);
    return row < 0 ? nullptr : jobs()->index(row, 0).data(roleNamed(jobs(), "job")).value<QObject*>();
}
