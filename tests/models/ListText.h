#pragma once

#include "models/TestList.h"

#include <QString>

namespace jobmanager_test {

/// The test ids of the rows, in order, with blanks between.
QString orderText(const jobmanager_ui::TestList& tests);
/// The sections as `"title", start, count`, with "; " between.
QString sectionsText(const jobmanager_ui::TestList& tests);

} // namespace jobmanager_test
