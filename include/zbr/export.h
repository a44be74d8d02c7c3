// ZBR_API marks the names that the shared library exports; everything else stays hidden.
//
// ZBR_STATIC: define it when linking the static library (the CMake target zbr::zbr does so by itself).
// ZBR_BUILDING: defined only while the library itself is compiled.
#pragma once

#if defined(ZBR_STATIC)
#define ZBR_API
#elif defined(_WIN32)
#if defined(ZBR_BUILDING)
#define ZBR_API __declspec(dllexport)
#else
#define ZBR_API __declspec(dllimport)
#endif
#else
#define ZBR_API __attribute__((visibility("default")))
#endif
