#pragma once

#include "models/TestList.h"

#include <QString>

namespace jobmanager_test {

/// The test ids of the rows of a list, or of a slice of one, in order, with blanks between.
QString orderText(const QAbstractItemModel& tests);
/// The sections as `"title", start, count`, with "; " between.
QString sectionsText(const jobmanager_ui::TestList& tests);

} // namespace jobmanager_test
