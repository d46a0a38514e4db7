#ifndef KVX3D_HOST_LINK_EXPORT_H
#define KVX3D_HOST_LINK_EXPORT_H

/// KVX3D_API marks what leaves the shared library; everything else stays hidden.
///
/// Three uses of one header: building the library (CMake defines KVX3DMeshlessToolbox_EXPORTS),
/// linking it on Windows (KVX3D_SHARED asks for the import form), and compiling the sources
/// straight into a host, where the macro needs no definition and changes nothing.
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
