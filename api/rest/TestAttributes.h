#pragma once

#include "api/cdm/CdmSouthboundJob.h"

#include <QString>
#include <vector>

namespace jobmanager_ui {

/// The names of the free attributes of the test and, if there is one, the location; each once, structured content
/// beside the properties ("subTypeInfo", "referenceInfo") left out.
std::vector<QString> namesOfTestAttributes(const cdm::Test& test, const cdm::TestLocation* location);

/// The attribute of that name. The location's goes first; the test fills in for a location that does not have it. A
/// default one if neither has. A read that throws is warned of and counts as one that found nothing.
cdm::Attribute testAttribute(const cdm::Test& test, const cdm::TestLocation* location, const QString& name);

/// Writes the value to the attribute of that name in the records alone; no service hears of it. A location's
/// attribute is read from the location and stored at the test: the location keeps what it had. A write that throws
/// is warned of.
void setTestAttribute(cdm::Test& test, cdm::TestLocation* location, const QString& name, const QString& value);

} // namespace jobmanager_ui
