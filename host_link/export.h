#ifndef KVX3D_HOST_LINK_EXPORT_H
#define KVX3D_HOST_LINK_EXPORT_H

/// KVX3D_API marks what the shared library exports; all other symbols stay hidden.
///
/// Three uses of one header: building the library (CMake defines KVX3DMeshlessToolbox_EXPORTS),
/// linking it on Windows (KVX3D_SHARED selects the import form), and compiling the sources directly
/// into a host, where neither is defined and the macro has no effect.
#ifndef KVX3D_API
#if defined(_WIN32) && defined(KVX3DMeshlessToolbox_EXPORTS)
#define KVX3D_API __declspec(dllexport)
#elif defined(_WIN32) && defined(KVX3D_SHARED)
#define KVX3D_API __declspec(dllimport)
#elif defined(_WIN32)
#define KVX3D_API
#else
#define KVX3D_API __attribute__((visibility("default")))
#endif
#endif

#endif
