#pragma once

/// Marks a class or function that the shared library offers to its users. Everything else is hidden.
#define ZQXML_EXPORT __attribute__((visibility("default")))
