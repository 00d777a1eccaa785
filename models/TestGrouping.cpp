#include "models/TestGrouping.h"

#include <algorithm>
#include <QHash>
#include <QVariantMap>

namespace jobmanager_ui {

namespace {

struct RankedID
{
    int firstPosition = 0;
    long long id = 0;
};

QVariantMap section(const QString& title, int start, int count)
{
    return {
        { QStringLiteral("section"), title },
        { QStringLiteral("startIndex"), start },
        { QStringLiteral("testsCount"), count },
    };
}

} // namespace

std::vector<long long> groupedByText(const std::vector<long long>& ids, const std::function<QString(long long)>& textOf)
{
    QHash<QString, int> firstPositions;
    std::vector<RankedID> ranked;
    ranked.reserve(ids.size());
    for (const long long id : ids) {
        const QString text = textOf(id);
        auto first = firstPositions.find(text);
        if (first == firstPositions.end()) {
            first = firstPositions.insert(text, static_cast<int>(ranked.size()));
        }
        ranked.push_back({ *first, id });
    }
    std::stable_sort(ranked.begin(), ranked.end(),
        [](const RankedID& a, const RankedID& b) { return a.firstPosition < b.firstPosition; });

    std::vector<long long> grouped;
    grouped.reserve(ranked.size());
    for (const RankedID& entry : ranked) {
        grouped.push_back(entry.id);
    }
    return grouped;
}

QVariantList sectionsOf(const std::vector<long long>& rows, const std::function<QString(long long)>& titleOf)
{
    QVariantList sections;
    QString current;
    int start = 0;
    int row = 0;
    const auto close = [&] {
        if (!current.isEmpty()) {
            sections.append(section(current, start, row - start));
        }
    };
    for (const long long id : rows) {
        const QString title = titleOf(id);
        if (title != current) {
            close();
            start = row;
            current = title;
        }
        ++row;
    }
    close();
    return sections;
}

} // namespace jobmanager_ui
