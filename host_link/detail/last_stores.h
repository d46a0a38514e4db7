#ifndef KVX3D_HOST_LINK_DETAIL_LAST_STORES_H
#define KVX3D_HOST_LINK_DETAIL_LAST_STORES_H

/// Last statement of a destructor that nulls links or clears marks: makes those stores happen.
///
/// A host may look at an object that was destroyed in place and must see no link to what is gone.
/// GCC drops stores to an object whose lifetime ends behind them, unless something may read them.
inline void KeepLastStores() {
#if defined(__GNUC__)
    __asm__ __volatile__("" : : : "memory");
#endif
}

#endif
