#pragma once

namespace job_service {

class JsonTree;

/// Merges what another instrument has of a job into this one's document. Returns whether anything changed.
///
/// Of two results of one test or location the later one counts; the other one is kept beside it, in `earlierResults`.
/// Tests belong together by type and name, locations by name, of several alike those at the same place; those that only
/// the other instrument has are added at the end. Everything else of `ours` stays as it is. Nothing of either side is
/// lost, and merging the same again changes nothing.
bool mergeJob(JsonTree& ours, const JsonTree& theirs);

} // namespace job_service
