#pragma once

/// Marks what the shared library offers; everything else is hidden.
#define JOB_MANAGER_EXPORT __attribute__((visibility("default")))
