// Jobs leave and enter the instrument: export to and import from USB media, exchange with an attached device.
// The way out is checked here; the work itself is the data interface's, on the worker.
#include "core/JobManager.h"

#include "api/Logging.h"
#include "core/UsbMedia.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace jobmanager_ui {

namespace {

QString deviceDirectory()
{
    return QStringLiteral("/dev");
}

/// Links and directories of the exchange device's name: a bare device node is not among what this lists.
QFileInfoList exchangeDevices()
{
    return QDir(deviceDirectory()).entryInfoList({ QStringLiteral("qzx") });
}

bool directoryExists(const QString& path)
{
    return QFileInfo(path).isDir();
}

/// The medium to use for the folder that the front end named.
QString exportFolder(const QString& usbRootFolder)
{
    if (usbRootFolder != QLatin1String("/media")) {
        return usbRootFolder;
    }
    const QString found = findFirstUsbDirectory(usbRootFolder);
    return found.isEmpty() ? usbRootFolder : found;
}

} // namespace

QString JobManager::exportJobData(Job* job, QString usbRootFolder)
{
    if (job == nullptr || usbRootFolder.isEmpty()) {
        qCDebug(logCategory) << "exportJobData"
                             << "usbRootFolder is empty";
        return {};
    }
    if (!directoryExists(usbRootFolder)) {
        qCDebug(logCategory) << "exportJobData"
                             << "usbRootFolder does not exist: " << usbRootFolder;
        return {};
    }
    const QString folder = exportFolder(usbRootFolder);
    if (!backgroundFetching()) {
        return m_api->exportJobData(job->concreteTypeJobID(), folder);
    }
    m_exportingJobData = true;
    Q_EMIT exportingJobDataChanged();
    Q_EMIT exportJobDataOnBackgroundThread(job->concreteTypeJobID(), folder);
    return {};
}

void JobManager::onExportJobDataFinished(QString outputPath)
{
    m_exportingJobData = false;
    m_exportJobDataOutputPath = outputPath;
    Q_EMIT exportJobDataOutputPathChanged();
    Q_EMIT exportingJobDataChanged();
}

bool JobManager::showExportJobSelection(QString usbRootFolder)
{
    return directoryExists(usbRootFolder);
}

int JobManager::importJobs(QString path)
{
    if (!QFileInfo::exists(path)) {
        onImportJobsFinished(-1);
        return -1;
    }
    if (!backgroundFetching()) {
        onImportJobsFinished(m_api->importJobs(path));
        return 0;
    }
    m_importingJobs = true;
    Q_EMIT importingJobsChanged();
    Q_EMIT importJobsOnBackgroundThread(path);
    return 0;
}

void JobManager::onImportJobsFinished(int numberJobs)
{
    m_importingJobs = false;
    m_importJobsNumberJobs = numberJobs;
    Q_EMIT importJobsNumberJobsChanged();
    Q_EMIT importingJobsChanged();
}

bool JobManager::showImportJobButton(QString usbRootFolder)
{
    const QStringList patterns{ QStringLiteral("*.job.json"), QStringLiteral("*.tpl.json") };
    return QDirIterator(usbRootFolder, patterns, QDir::Files, QDirIterator::Subdirectories).hasNext();
}

bool JobManager::showExchangeJobSelection()
{
    return !exchangeDevices().isEmpty();
}

bool JobManager::exchangeCurrentJob()
{
    if (!directoryExists(deviceDirectory())) {
        m_exchangingJob = false;
        Q_EMIT exchangingJobChanged();
        return false;
    }
    const QFileInfoList devices = exchangeDevices();
    if (devices.isEmpty()) {
        return false;
    }
    const QString device = devices.first().absoluteFilePath();
    if (!backgroundFetching()) {
        const bool exchanged = m_api->exchangeCurrentJob(device);
        m_exchangingJob = false;
        Q_EMIT exchangingJobChanged();
        return exchanged;
    }
    m_exchangingJob = true;
    Q_EMIT exchangingJobChanged();
    Q_EMIT exchangeJobOnBackgroundThread(device);
    return true;
}

void JobManager::onExchangeJobFinished(bool status)
{
    m_exchangingJob = false;
    m_jobExchangeStatus = status;
    Q_EMIT jobExchangeStatusChanged();
    Q_EMIT exchangingJobChanged();
}

} // namespace jobmanager_ui
