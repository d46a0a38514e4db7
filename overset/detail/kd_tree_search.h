#ifndef KVX3D_OVERSET_DETAIL_KD_TREE_SEARCH_H
#define KVX3D_OVERSET_DETAIL_KD_TREE_SEARCH_H

#include "overset/kd_tree.h"

/// Searches of KDtreeCore. They read the nodes as they are at the moment of the call, so they see
/// nodes that a host has changed, and they change nothing themselves.
///
/// No search recurses: a list holds the branches that are still to be visited, so the depth of a
/// degenerate tree costs heap memory and no stack.
namespace kvx3d::detail {

/// The node nearest to `query`; KVX_ART_KDtree::SearchNearestPoints() gives the rule for ties.
/// @return null for an empty tree
/// @throws std::bad_alloc  no memory for the list of open branches; only trees more than 128
///                         levels deep need any
const KDtreeNode* NearestNode(const KDtreeCore& core, const double* query);

/// Adds the nodes within `radius` of the query to a result set, the last one visited first.
/// @return false if there is not enough memory
bool CollectWithin(const KDtreeCore& core, const double* query, double radius,
                   KDtreeResultSet& set);

/// Adds an entry to a result list.
///
/// If distSq >= 0, the entries ascend by distance and the new one is placed before the first entry
/// that is not nearer. If distSq is negative, the new entry becomes the first one.
/// @param head  the list's head entry
/// @return false if there is not enough memory for the entry
bool InsertResult(KDtreeResultNode* head, KDtreeNode* node, double distSq);

/// Releases the entries after the head entry.
void ClearResults(KDtreeResultNode* head);

}  // namespace kvx3d::detail

#endif
