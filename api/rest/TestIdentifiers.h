#pragma once

#include <string>
#include <vector>

namespace cdm {
struct CdmSouthboundJob;
}

namespace jobmanager_ui {

// A test id packs two signed 32-bit indices: the test index in the high half, the location index in the low
// half, where -1 means that the id names the test itself. The service names the same thing by an index string:
// "12" for a test, "12_3" for a location of it. All functions here are pure and may run on any thread.

/// The two indices of a test id, laid out as in the id.
struct TestIndices
{
    /// Index of the location inside the test, -1 for none.
    int locationIndex = -1;
    /// Index of the test inside its job.
    int testIndex = 0;
};

/// Packs two indices into a test id.
long long testIdFromIndices(TestIndices indices);

/// Takes a test id apart.
TestIndices indicesFromTestId(long long id);

/// The service's name of the test or location. A negative id has no test part: "_5", or the empty string.
std::string getUiIndexFromTestId(long long id);

/// The service's name of the test alone, the location dropped; empty for a negative id.
std::string getTestUiIndexFromTestId(long long id);

/// Parses an index string. "0x" reads as hexadecimal and a leading "0" as octal; text that is no number counts as 0.
TestIndices getIndicesFromUiIndex(const std::string& uiIndex);

/// All ids of a job, in record order: one for each location of a test that has locations, otherwise one for the
/// test. An index string gives the id; where there is none the position in the list does, and an empty one means
/// that the record has no id.
std::vector<long long> get_all_test_ids(const cdm::CdmSouthboundJob& job);

} // namespace jobmanager_ui
