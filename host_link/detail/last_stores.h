#ifndef KVX3D_HOST_LINK_DETAIL_LAST_STORES_H
#define KVX3D_HOST_LINK_DETAIL_LAST_STORES_H

namespace kvx3d::detail {

/// Keeps the stores made so far in a destructor; call it as the last statement there.
///
/// Some destructors set links to null or clear a mark, and a host may look at an object that was
/// destroyed in place: it must not find a link to released memory. GCC removes stores to an object
/// whose lifetime ends after them, unless something may still read them. The empty assembler
/// statement counts as such a reader.
inline void KeepLastStores() {
#if defined(__GNUC__)
    __asm__ __volatile__("" : : : "memory");
#endif
}

}  // namespace kvx3d::detail

#endif
