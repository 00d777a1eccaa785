#pragma once

#include <functional>
#include <QString>
#include <QVariantList>
#include <vector>

namespace jobmanager_ui {

/// The ids with those of equal text together: the groups in the order in which their texts first occur, and within
/// a group the ids in their order. Texts are equal only letter for letter. Asks each id for its text once.
std::vector<long long> groupedByText(
    const std::vector<long long>& ids, const std::function<QString(long long)>& textOf);

/// The runs of neighbouring rows with one title, in row order, each a QVariantMap of "section" (the title, a QString),
/// "startIndex" (its first row, an int) and "testsCount" (how many rows, an int). Rows with an empty title belong to
/// no section. Asks each row for its title once.
QVariantList sectionsOf(const std::vector<long long>& rows, const std::function<QString(long long)>& titleOf);

} // namespace jobmanager_ui
