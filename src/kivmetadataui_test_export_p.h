#pragma once
// Internal to kivmetadataui, never installed: marks the internal helpers that
// the library's own tests call. A library built with KIV_EXPORT_TEST_HELPERS
// (a build with tests) exports them; any other build keeps them hidden, so
// hosts cannot come to depend on them. Outside the library only the tests
// include the private headers, and they import.

#include <kivmetadataui/kivmetadataui_export.h>

#if defined(KIV_EXPORT_TEST_HELPERS) || !defined(kivmetadataui_EXPORTS)
#define KIVMETADATAUI_TEST_EXPORT KIVMETADATAUI_EXPORT
#else
#define KIVMETADATAUI_TEST_EXPORT
#endif
