#pragma once

#include <QString>

/// Takes down Qt's warnings, and whatever is worse, of the whole process; every message goes on to where it went
/// before.
namespace WarningLog {

/// Begins, or goes on behind a message handler that was installed in the meantime.
void start();

/// The exit code of a test program whose tests ended with `result`: that, or 1 after a list of the warnings if the
/// tests passed but something was warned of.
int exitCode(int result);

} // namespace WarningLog
