// Export macros. Exactly the classes and functions that callers may use bear one of them; every
// other symbol of the two libraries is hidden.
#pragma once

#define ORVEX_EXPORT __attribute__((visibility("default")))

// For OrvexFoundation and OrvexCoreGeometry: the same attribute today, two names so that a
// platform with import and export declarations needs a change in this file only.
#define ORVEX_FOUNDATION_API ORVEX_EXPORT
#define ORVEX_API ORVEX_EXPORT
