#ifndef KVX3D_TESTS_SUPPORT_PRIVATE_ACCESS_H
#define KVX3D_TESTS_SUPPORT_PRIVATE_ACCESS_H

/// Gives a test access to a private member without a change of the class: an explicit
/// instantiation may name private members, and a friend function returns the pointer.
///
///     KVX3D_EXPOSE(InnerProduct, &CKVX_ART_HoleCutting::Innerproduct,
///                  double (CKVX_ART_HoleCutting::*)(double*, double*));
///     ...
///     EXPECT_EQ((cutting.*MemberOf(InnerProduct()))(a, b), 32.0);
///
/// It works for data members too (`int Class::*`). Use it at namespace scope, outside anonymous
/// namespaces, with a name that is unique in the test program.
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
