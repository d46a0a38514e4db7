#ifndef KVX3D_HOST_CHECKS_EXPORT_H
#define KVX3D_HOST_CHECKS_EXPORT_H

/// KVX3D_CHECKS_API marks what leaves the shared library KVX3DHostChecks; everything else stays
/// hidden.
///
/// CMake defines KVX3DHostChecks_EXPORTS while it builds the library. A program that links the
/// shared library on Windows gets the import form by KVX3D_CHECKS_SHARED.
#ifndef KVX3D_CHECKS_API
#if defined(_WIN32) && defined(KVX3DHostChecks_EXPORTS)
#define KVX3D_CHECKS_API __declspec(dllexport)
#elif defined(_WIN32) && defined(KVX3D_CHECKS_SHARED)
#define KVX3D_CHECKS_API __declspec(dllimport)
#elif defined(_WIN32)
#define KVX3D_CHECKS_API
#else
#define KVX3D_CHECKS_API __attribute__((visibility("default")))
#endif
#endif

#endif
