#ifndef KVX3D_TESTS_SUPPORT_PRIVATE_ACCESS_H
#define KVX3D_TESTS_SUPPORT_PRIVATE_ACCESS_H

/// Reaches a private member from a test without touching the class: an explicit instantiation may
/// name private members, and hands the pointer to a friend function.
///
///     KVX3D_EXPOSE(InnerProduct, &CKVX_ART_HoleCutting::Innerproduct,
///                  double (CKVX_ART_HoleCutting::*)(double*, double*));
///     ...
///     EXPECT_EQ((cutting.*MemberOf(InnerProduct()))(a, b), 32.0);
///
/// Works for data members too (`int Class::*`). Use it at namespace scope, outside anonymous
/// namespaces, with a name that no other file of the same program uses.
template <typename Tag, typename Tag::type member>
struct ExposeMember {
    friend typename Tag::type MemberOf(Tag) { return member; }
};

#define KVX3D_EXPOSE(Name, member, ...) \
    struct Name {                       \
        using type = __VA_ARGS__;       \
        friend type MemberOf(Name);     \
    };                                  \
    template struct ExposeMember<Name, member>

#endif
