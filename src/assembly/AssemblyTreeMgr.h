// The product structure that an application shows as a tree: assemblies, sub-assemblies and
// occurrences of parts with their placements, and the table of definitions that the occurrences
// refer to. Text and matrices only, independent of the labels of any document. A STEP read fills
// it; the other operations let the application insert and regroup nodes.
//
// Look-up by id goes depth first: each root in order, first the node itself, then its subtree.
// The first match counts.
//
// Caveat: ids from a STEP file are label entries. A sub-assembly that occurs twice has its inner
// nodes twice in the tree, with equal ids; a look-up by such an id finds the first of them, and
// so do the operations below that take a parent or a target.
// Caveat: no lock. One thread at a time; during a STEP read that thread is the reader's.
#pragma once

#include "assembly/AssemblyTree.h"
#include "foundation/Export.h"

#include <unordered_map>

class ORVEX_API AssemblyTreeMgr
{
public:
  using Definitions = std::unordered_map<std::string, AssemblyPartDefinition>;

  // The process's one tree, made on first use from any thread.
  static AssemblyTreeMgr& GetInstance();

  // A tree of one's own.
  AssemblyTreeMgr() = default;

  // Empties roots and definitions.
  void Clear();

  // True if there are no roots, whatever the table of definitions holds.
  bool Empty() const;

  // Replaces the roots, in display order. A caller that needs its vector no more moves it in.
  void SetRoots(const std::vector<AssemblyTreeNode>& newRoots);
  void SetRoots(std::vector<AssemblyTreeNode>&& newRoots);
  const std::vector<AssemblyTreeNode>& GetRoots() const;

  // Replaces the table of definitions.
  void SetDefinitions(const Definitions& newDefinitions);
  void SetDefinitions(Definitions&& newDefinitions);
  const Definitions& GetDefinitions() const;

  // Returns: the definition with this key, null if there is none. Valid until the table changes.
  const AssemblyPartDefinition* FindDefinition(const std::string& partId) const;

  // True if the tree is not empty and holds nothing but nodes that an application generated from
  // its own document: assembly roots with ids "doc_root::...", and under them only childless parts
  // with ids "doc_occ::..." and part ids "doc_def::...".
  bool ContainsOnlyGeneratedDocumentNodes() const;

  // Appends a copy of an assembly to the children of `parentId`, or to the roots if that is empty.
  // Returns: false, with nothing changed, if `node` is no assembly or has no id, or if the parent
  // does not exist or is no assembly. Whether the id is taken already is not looked at.
  bool InsertAssemblyNode(const std::string& parentId, const AssemblyTreeNode& node);

  // Puts members of one container (the children of `parentId`, or the roots if that is empty)
  // under a new assembly, which takes the place of the first of them. The members keep the order
  // that they have in the container, whatever the order of `nodeIds`; children that `assembly`
  // brings along are dropped; placements stay as they are.
  // Returns: false, with nothing changed, if `assembly` is no assembly or has no id, if the parent
  // does not exist or is no assembly, or if `nodeIds` is empty, has an empty or a repeated id, or
  // one that is no direct member.
  // Cost: linear in the size of the container.
  bool GroupNodesUnderAssembly(const std::string& parentId, const std::vector<std::string>& nodeIds,
                               const AssemblyTreeNode& assembly);

  // Moves members of one container (the children of `sourceId`, or the roots if that is empty) to
  // the end of the children of `targetId`, in the order of `nodeIds`. Placements stay as they are:
  // what was relative to the old parent is taken as relative to the new one.
  // Returns: false, with nothing changed, if source and target are the same, if either does not
  // exist or is no assembly, if `nodeIds` is empty, has an empty or a repeated id, or one that is
  // no direct member, or if a member is the target or contains it.
  bool MoveNodesToAssembly(const std::string& sourceId, const std::vector<std::string>& nodeIds,
                           const std::string& targetId);

private:
  AssemblyTreeNode* FindAssembly(const std::string& id);
  std::vector<AssemblyTreeNode>* FindContainer(const std::string& parentId);

  std::vector<AssemblyTreeNode> roots;
  Definitions definitions;
};
