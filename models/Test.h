#pragma once

#include "api/JobManagerAPIAbstraction.h"
#include "models/OptionalPropertyMap.h"

#include <memory>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace jobmanager_ui {

/// What QML sees of one test of a job, or of one location of a test.
///
/// Part of it is a snapshot, taken by updateDataFromAPI. The rest (description, site, status, configuration, guide,
/// answer and prompt of a manual step) asks the data interface on each read, so that a binding which re-evaluates
/// after an update sees fresh data. Such a read of a job that is not in the cache fetches and blocks.
///
/// TestList owns each Test by shared pointer and keeps the same object for as long as its id stays in the job. The
/// object belongs to C++ in whatever way JavaScript came by it. Main thread only.
class Test : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Test)

    Q_PROPERTY(int testIndex READ testIndex NOTIFY testIndexChanged)
    Q_PROPERTY(int locationIndex READ locationIndex NOTIFY locationIndexChanged)
    Q_PROPERTY(QString testType READ testType NOTIFY testTypeChanged)
    Q_PROPERTY(QString testTypeDisplayName READ testTypeDisplayName NOTIFY testTypeDisplayNameChanged)
    Q_PROPERTY(QString description READ description NOTIFY descriptionChanged)
    Q_PROPERTY(QString site READ site NOTIFY siteChanged)
    Q_PROPERTY(QString testStatus READ testStatus NOTIFY testStatusChanged)
    Q_PROPERTY(QDateTime testTime READ testTime NOTIFY testTimeChanged)
    Q_PROPERTY(jobmanager_ui::TestRequirement::Enum testRequired READ testRequired NOTIFY testRequiredChanged)
    Q_PROPERTY(QStringList configuration READ configuration NOTIFY configurationChanged)
    Q_PROPERTY(QQmlPropertyMap* optionalProperties READ optionalProperties NOTIFY optionalPropertiesChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage WRITE setErrorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(int errorSeverity READ errorSeverity NOTIFY errorSeverityChanged)
    Q_PROPERTY(QString guideFilepath READ guideFilepath NOTIFY guideFilepathChanged)
    Q_PROPERTY(bool hasGuide READ hasGuide NOTIFY hasGuideChanged)
    Q_PROPERTY(QString location READ location NOTIFY locationChanged)
    Q_PROPERTY(int numberOfTestLocations READ numberOfTestLocations NOTIFY numberOfTestLocationsChanged)
    Q_PROPERTY(QString manualStepUserResponse READ manualStepUserResponse WRITE setManualStepUserResponse NOTIFY
            manualStepUserResponseChanged)
    Q_PROPERTY(QVariantMap testConfigurationMap READ testConfigurationMap NOTIFY testConfigurationMapChanged)

public:
    /// A test whose snapshot is read from `api` before the constructor returns. A test that `api` does not know gets
    /// what `api` answers for such a one.
    Test(std::shared_ptr<JobManagerAPIAbstraction> api, QString jobID, long long testID);

    /// Index of the test inside its job.
    int testIndex() const { return m_testIndex; }
    /// Index of the location inside the test, -1 for none.
    int locationIndex() const { return m_locationIndex; }
    /// The type token; "manual" marks a manual test.
    QString testType() const { return m_testType; }
    /// Name of the test type for display.
    QString testTypeDisplayName() const { return m_testTypeDisplayName; }
    /// What the test is about. Read anew on each call.
    QString description() const;
    /// Where the test is to be carried out. Read anew on each call.
    QString site() const;
    /// The status token. Read anew on each call.
    QString testStatus() const;
    /// When the test ran, null if it has no result.
    QDateTime testTime() const { return m_testTime; }
    /// How far the job asks for the test.
    TestRequirement::Enum testRequired() const { return m_testRequired; }
    /// The configuration lines. Read anew on each call.
    QStringList configuration() const;
    /// The test's optional properties by name; never null. Built by the first read after an update, and dropped by
    /// the next one. Owned by the test. What QML writes goes to the data interface at once: see
    /// onPropertyValueChanged.
    QQmlPropertyMap* optionalProperties();
    /// What the last launch failed with, empty if it did not.
    QString errorMessage() const { return m_errorMessage; }
    /// How severe errorMessage is, 0 without one.
    int errorSeverity() const { return m_errorSeverity; }
    /// Path of the guide file, or empty. Read anew on each call.
    QString guideFilepath() const;
    /// checkIfGuideFileExists, for QML.
    bool hasGuide() const;
    /// The location's name; "~" for a test without one.
    QString location() const { return m_location; }
    /// How many locations the test has.
    int numberOfTestLocations() const { return m_numberOfTestLocations; }
    /// The recorded answer of a manual step. Read anew on each call.
    QString manualStepUserResponse() const;
    /// The prompt of a manual test, read anew on each call; empty for every other type.
    QVariantMap testConfigurationMap() const;

    /// The id of the test's job; never changes.
    QString concreteTypeJobID() const { return m_jobID; }
    /// The test's id inside its job; never changes.
    long long concreteTypeTestID() const { return m_testID; }
    /// Whether there is a file, not a folder, at guideFilepath at this moment.
    bool checkIfGuideFileExists() const;

    /// Records the answer of a manual step at the data interface. The answer that is recorded already is not written
    /// again. Emits manualStepUserResponseChanged only if the interface accepts; a refusal reports nothing.
    void setManualStepUserResponse(const QString& response);

    /// Writes the property through the data interface, in this thread. Says nothing if it is accepted, and leaves
    /// the map as it is. A value that it refuses is replaced in the map by the one that it holds, and
    /// optionalPropertiesChanged is emitted.
    void onPropertyValueChanged(const QString& propertyName, const QVariant& value);

    /// Takes the snapshot anew, drops optionalProperties and emits all signals, each whether or not its value changed,
    /// in the order of their declaration. The error of the last launch is dropped if the test has got another time, and
    /// kept otherwise.
    void updateDataFromAPI();

Q_SIGNALS:
    void testIndexChanged();
    void locationIndexChanged();
    void testTypeChanged();
    void testTypeDisplayNameChanged();
    void descriptionChanged();
    void siteChanged();
    void testStatusChanged();
    void testTimeChanged();
    void testRequiredChanged();
    void optionalPropertiesChanged();
    void errorMessageChanged();
    void errorSeverityChanged();
    void configurationChanged();
    void guideFilepathChanged();
    void hasGuideChanged();
    void locationChanged();
    void numberOfTestLocationsChanged();
    void manualStepUserResponseChanged();
    void testConfigurationMapChanged();

public Q_SLOTS:
    /// Stores the message and emits errorMessageChanged, both only if it is another one.
    void setErrorMessage(QString errorMessage);
    /// Stores the severity and emits errorSeverityChanged, both only if it is another one.
    void setErrorSeverity(int errorSeverity);

private:
    void readSnapshot();
    void readLocation();
    void emitAllSignals();

    std::shared_ptr<JobManagerAPIAbstraction> m_api;
    QString m_jobID;
    long long m_testID;
    int m_testIndex = 0;
    int m_locationIndex = 0;
    QString m_testType;
    QString m_testTypeDisplayName;
    QDateTime m_testTime;
    int m_errorSeverity = 0;
    TestRequirement::Enum m_testRequired = TestRequirement::TEST_UNDEFINED;
    OptionalPropertyMapPointer m_optionalProperties;
    QString m_errorMessage;
    QString m_location;
    int m_numberOfTestLocations = 0;
};

} // namespace jobmanager_ui
