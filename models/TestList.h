#pragma once

#include "api/JobManagerAPIAbstraction.h"
#include "models/Test.h"

#include <functional>
#include <memory>
#include <QAbstractListModel>
#include <QHash>
#include <QString>
#include <QVariantList>
#include <vector>

class QRegExp;

namespace jobmanager_ui {

/// The tests of one job as a list model, a row per test id: grouped, filtered by status, searched by location and
/// cut into sections.
///
/// Nothing is read before somebody asks for the tests, and again only after markAsUpdateRequired. Rows change by
/// model resets alone. Inside a reset, and in this order, go out: testsCountChanged if the filter or the search
/// changes the number of rows, sectionsChanged (with sectionsCount still old) and sectionsCountChanged.
///
/// The list owns its Test objects. A Test that was handed out stays valid, across reloads, filters and searches, for
/// as long as its id stays in the job. Main thread only; reads of the data interface happen at once and are expected
/// to find the job in the cache.
class TestList : public QAbstractListModel
{
    Q_OBJECT
    Q_DISABLE_COPY(TestList)

    Q_PROPERTY(int testsCount READ testsCount NOTIFY testsCountChanged)
    Q_PROPERTY(int sectionsCount READ sectionsCount NOTIFY sectionsCountChanged)
    Q_PROPERTY(QVariantList sections READ sections NOTIFY sectionsChanged)
    Q_PROPERTY(QString searchRegExpStr READ getSearchRegExpStr WRITE setSearchRegExpStr NOTIFY searchRegExpStrChanged)
    Q_PROPERTY(TestFilter testFilter READ getTestFilter WRITE setTestFilter NOTIFY testFilterChanged)

public:
    /// Which tests of the job the list is of.
    enum TestSubset : int {
        TESTSUBSET_ALL = 0, ///< all
        TESTSUBSET_REQUIRED = 1, ///< the required ones
        TESTSUBSET_OPTIONAL = 2, ///< the optional ones
    };

    /// Which rows are shown. A test is complete if its status is not empty, whatever it says.
    enum TestFilter : int {
        TESTFILTER_ALL = 0, ///< all
        TESTFILTER_COMPLETED = 1, ///< those with a status
        TESTFILTER_INCOMPLETE = 2, ///< those without
    };
    Q_ENUM(TestFilter)

    /// The model's roles. The enumerator Test hides the class of that name inside this one.
    enum TestRoles : int {
        JobID = Qt::UserRole + 1, ///< "jobID", the job's id, a QString
        TestID, ///< "testID", the test's id, a long long
        TestStatus, ///< "testStatus", the status token, a QString
        TestTime, ///< "testTime", when the test ran, a QDateTime
        TestSection, ///< "testSection", the title of the row's section, a QString
        Test, ///< "test", the Test*, owned by the list
    };
    Q_ENUM(TestRoles)

    /// An empty list that asks `api` nothing until its first update. A value outside TestSubset counts as
    /// TESTSUBSET_ALL.
    TestList(std::shared_ptr<JobManagerAPIAbstraction> api, QString jobID, TestSubset testSubset);

    /// The number of rows, whatever the parent is.
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    /// The row's values by role; invalid for a row that is not there and for any other role.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Always false: nothing is written through the model.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    /// The roles above by name.
    QHash<int, QByteArray> roleNames() const override;

    /// The number of rows shown, not of the job's tests.
    int testsCount() const { return static_cast<int>(m_testIDs.size()); }
    /// The number of sections.
    int sectionsCount() const { return m_sectionsCount; }
    /// The sections in row order, each a map of "section", "startIndex" and "testsCount" (see sectionsOf).
    QVariantList sections() const { return m_sections; }
    /// The search as it was set, emptied by each reload. Text that is blank all over searches for nothing.
    QString getSearchRegExpStr() const { return m_searchRegExpStr; }
    /// Shows only rows whose location matches the regular expression (QRegExp) somewhere, in whatever case; an
    /// expression that is none matches no row. Emits searchRegExpStrChanged after the reset; the text that is set
    /// already does nothing.
    void setSearchRegExpStr(QString searchRegExpStr);
    /// Which rows are shown.
    TestFilter getTestFilter() const { return m_testFilter; }
    /// Shows the rows of that filter and emits testFilterChanged after the reset; the value that is set already does
    /// nothing.
    void setTestFilter(TestFilter testFilter);
    /// Groups the rows anew, inside a reset; the value that is set already does nothing. NONE, DEFAULT_VIEW and any
    /// number outside the enum keep the order of the job.
    void setGroupType(TestGroupType::Enum groupType);
    /// Computes rows and sections anew, inside a reset.
    void filterTests();

    /// From now on the next updateDataFromAPIIfRequired reloads.
    void markAsUpdateRequired() { m_updateRequired = true; }
    /// Reloads, if that is required: reads the ids anew, updates the tests that stay and makes the new ones, drops the
    /// search without a signal, and rebuilds the rows, all inside a reset. After the reset it emits
    /// newTestResultsReceived, once, if a test that was known has another time. testsCountChanged does not tell
    /// of tests that came or went. A reload that becomes required while the tests are being updated waits for the next
    /// call.
    void updateDataFromAPIIfRequired();

    /// The test with this id, also one that is filtered out; null if there is none. Reloads first if required.
    std::shared_ptr<jobmanager_ui::Test> getTest(long long testID);
    /// The title of the test's section: by group type the index of the test, its location or the name of its type;
    /// empty for no grouping and for null.
    QString getSection(const std::shared_ptr<jobmanager_ui::Test>& test) const;
    /// The same for the test with this id; empty if there is none.
    QString getSection(long long testID) const;
    /// The row of the test that ran last, of all tests, shown or not. -1 if none has run; the number of rows if the
    /// test is not shown.
    Q_INVOKABLE int findLatestRanTestIndex() const;

    // Of all tests with this index the first one in the order of the job answers, shown or not.

    /// The name of its type for display; empty if there is none.
    QString getTestNamebyTestIndex(int testIndex) const;
    /// Its type token; empty if there is none.
    QString getTestTypeByTestIndex(int testIndex) const;
    /// What it is about; empty if there is none.
    QString getTestDescriptionByTestIndex(int testIndex) const;
    /// Where it is to be carried out; empty if there is none.
    QString getTestSiteByTestIndex(int testIndex) const;
    /// How many locations it has; -1 if there is none or it is not a required one.
    int testLocationsNumberByIndex(int testIndex) const;

    /// How many tests, each location for itself and shown or not, have this name of their type.
    int countTestsByDisplayName(QString displayName) const;
    /// How many of them are required and have exactly 0 locations.
    int testLocationsNumberByDisplayName(QString displayName) const;

Q_SIGNALS:
    void testsCountChanged();
    void sectionsCountChanged();
    void sectionsChanged();
    void searchRegExpStrChanged();
    void testFilterChanged();
    /// A reload has brought a new time for a test that was known. The new rows are there.
    void newTestResultsReceived();

private:
    using TestPointer = std::shared_ptr<jobmanager_ui::Test>;

    std::vector<long long> readTestIDs() const;
    bool takeOverTests(const QHash<long long, TestPointer>& oldTests);
    void buildSearchOptimizationStructures();

    // The rebuild of rows and sections; always inside a reset.
    void sortDataByGroupType();
    void orderRows();
    void sortByAttribute(const std::function<QString(jobmanager_ui::Test*)>& attribute);
    void sortTestListByLocation();
    void sortTestListByTest();
    void removeFilteredRows();
    bool testIsFilteredOut(const jobmanager_ui::Test& test, const QRegExp* search) const;
    void createSections();

    QString textByIndex(int testIndex, QString (jobmanager_ui::Test::*getter)() const) const;

    std::shared_ptr<JobManagerAPIAbstraction> m_api;
    TestSubset m_testSubset;
    bool m_updateRequired = true;
    TestGroupType::Enum m_groupType = TestGroupType::DEFAULT_VIEW;
    TestFilter m_testFilter = TESTFILTER_ALL;
    QString m_jobID;
    std::vector<long long> m_testIDs;
    std::vector<long long> m_allTestIDs;
    QHash<long long, TestPointer> m_testsByID;
    QHash<int, TestPointer> m_testsByIndex;
    int m_sectionsCount = 0;
    QVariantList m_sections;
    QString m_searchRegExpStr;

    /// Set while a reload updates the tests that stay and makes the new ones.
    bool m_takingOver = false;
};

} // namespace jobmanager_ui
