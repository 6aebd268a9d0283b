#pragma once

#include <cstddef>

/// Version of the API that these headers describe.
#define MAYA_API_VERSION 201000

#if defined(_WIN32)
#if defined(orvohost_EXPORTS)
#define OPENMAYA_EXPORT __declspec(dllexport)
#else
#define OPENMAYA_EXPORT __declspec(dllimport)
#endif
#else
#define OPENMAYA_EXPORT __attribute__((visibility("default")))
#endif

// One library serves all the modules that the API is divided into.
#define FND_EXPORT OPENMAYA_EXPORT
#define FOUNDATION_EXPORT OPENMAYA_EXPORT
#define OPENMAYAUI_EXPORT OPENMAYA_EXPORT
#define OPENMAYAANIM_EXPORT OPENMAYA_EXPORT
#define OPENMAYAFX_EXPORT OPENMAYA_EXPORT
#define OPENMAYARENDER_EXPORT OPENMAYA_EXPORT

using MInt64 = long long;
using MUint64 = unsigned long long;
/// What a callback is told by; 0 for none.
using MCallbackId = std::size_t;

using short2 = short[2];
using short3 = short[3];
using long2 = int[2];
using long3 = int[3];
using int2 = int[2];
using int3 = int[3];
using float2 = float[2];
using float3 = float[3];
using double2 = double[2];
using double3 = double[3];
using double4 = double[4];

#include <maya/MApiNamespace.h>
