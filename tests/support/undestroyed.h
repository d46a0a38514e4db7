#ifndef KVX3D_TESTS_SUPPORT_UNDESTROYED_H
#define KVX3D_TESTS_SUPPORT_UNDESTROYED_H

#include <new>
#include <utility>

/// An object whose destructor never runs, for a copy that shares its arrays with another object,
/// which releases them.
template <typename T>
struct Undestroyed {
    template <typename... Arguments>
    explicit Undestroyed(Arguments&&... arguments) {
        new (storage) T(std::forward<Arguments>(arguments)...);
    }
    Undestroyed(const Undestroyed&) = delete;
    Undestroyed& operator=(const Undestroyed&) = delete;

    T& operator*() { return *std::launder(reinterpret_cast<T*>(storage)); }
    T* operator->() { return &**this; }

    alignas(T) unsigned char storage[sizeof(T)];
};

#endif
