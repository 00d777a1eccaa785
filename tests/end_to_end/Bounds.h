#pragma once

/// The port that the module turns to by itself.
constexpr unsigned short modulePort = 8082;

/// A time bound in milliseconds for what begins now: stretched in builds that run slower, and on a machine on which
/// more wants to run than there are processors. To be asked for when the wait begins, since that changes.
int stretched(int milliseconds);
