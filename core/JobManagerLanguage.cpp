// The language of the texts that this module and its screens show.
#include "core/JobManager.h"

#include "api/Logging.h"

#include <QCoreApplication>
#include <QLocale>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTranslator>

namespace jobmanager_ui {

bool JobManager::setLanguage(QString languageCode)
{
    const QString catalogues = QStringLiteral("/usr/share/translations");
    auto* const translator = new QTranslator(this); // one that fails to load stays until the manager ends
    const QLocale locale = languageCode.isEmpty() ? QLocale() : QLocale(languageCode);
    qCWarning(logCategory) << "jobmanager-ui: Using this locale for the language: " << locale;
    qCWarning(logCategory) << "jobmanager-ui: Looking for translations in "
                           << "/usr/share/translations";
    if (!translator->load(locale, QStringLiteral("jobmanager-ui"), QStringLiteral("_"), catalogues)) {
        qCWarning(logCategory) << "jobmanager-ui: Could not load translation for the specified language";
        return false;
    }
    if (QCoreApplication::instance() == nullptr) {
        qCWarning(logCategory) << "jobmanager-ui: No QCoreApplication::instance found!";
        return false;
    }
    installTranslator(translator);
    retranslateScreens();
    return true;
}

void JobManager::installTranslator(QTranslator* translator)
{
    if (m_translator != nullptr) {
        QCoreApplication::removeTranslator(m_translator);
        m_translator->deleteLater();
        m_translator = nullptr;
    }
    QCoreApplication::installTranslator(translator);
    m_translator = translator;
}

void JobManager::retranslateScreens()
{
    const QQmlContext* const context = QQmlEngine::contextForObject(this);
    if (context == nullptr) {
        qCWarning(logCategory) << "jobmanager-ui: Could not fetch qml context";
        return;
    }
    QQmlEngine* const engine = context->engine();
    if (engine == nullptr) {
        qCWarning(logCategory) << "jobmanager-ui: Could not fetch context qml engine";
        return;
    }
    qCWarning(logCategory) << "jobmanager-ui: Retranslating";
    engine->retranslate();
}

} // namespace jobmanager_ui
