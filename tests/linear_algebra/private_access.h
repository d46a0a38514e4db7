#ifndef KVX3D_TESTS_LINEAR_ALGEBRA_PRIVATE_ACCESS_H
#define KVX3D_TESTS_LINEAR_ALGEBRA_PRIVATE_ACCESS_H

/// Reaches a private member by the one place where the language does not check access, an explicit
/// instantiation. Tag and instantiation stand in the global namespace:
///
///     struct TheClear {
///         using Type = void (Dense::*)();
///         friend Type Private(TheClear);
///     };
///     template struct Expose<TheClear, &Dense::ClearData>;
///     ...
///     (dense.*Private(TheClear{}))();
template <typename Tag, typename Tag::Type member>
struct Expose {
    friend typename Tag::Type Private(Tag) { return member; }
};

#endif
