#pragma once

// Marks the classes and functions that a shared build exports; everything else stays hidden.
#if defined(_WIN32) && defined(AQ_BUILDS_SHARED)
#define AQ_API __declspec(dllexport)
#elif defined(_WIN32) && defined(AQ_USES_SHARED)
#define AQ_API __declspec(dllimport)
#elif defined(__GNUC__) && !defined(_WIN32)
#define AQ_API __attribute__((visibility("default")))
#else
#define AQ_API
#endif
