#pragma once

/// Marks what the shared library exports; everything else is hidden.
#define VYR_API __attribute__((visibility("default")))
