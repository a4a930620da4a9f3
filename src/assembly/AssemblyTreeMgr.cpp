#include "assembly/AssemblyTreeMgr.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace {

using Nodes = std::vector<AssemblyTreeNode>;
using Positions = std::vector<std::size_t>;

AssemblyTreeNode* FindIn(Nodes& nodes, const std::string& id)
{
  for (AssemblyTreeNode& node : nodes) {
    if (node.id == id)
      return &node;
    if (AssemblyTreeNode* found = FindIn(node.children, id))
      return found;
  }
  return nullptr;
}

// Identity, not id: a repeated sub-assembly has other nodes with the same id.
bool IsOrContains(const AssemblyTreeNode& node, const AssemblyTreeNode* sought)
{
  return &node == sought ||
         std::ranges::any_of(node.children, [sought](const AssemblyTreeNode& child) {
           return IsOrContains(child, sought);
         });
}

// The positions of members by id, in the order of `ids`; none if an id is empty, comes twice or
// names no member.
std::optional<Positions> PositionsOf(const Nodes& container, const std::vector<std::string>& ids)
{
  std::unordered_map<std::string_view, std::size_t> positionById;
  for (std::size_t i = 0; i < container.size(); ++i)
    positionById.emplace(container[i].id, i);

  Positions positions;
  std::unordered_set<std::string_view> seen;
  for (const std::string& id : ids) {
    const auto found = positionById.find(id);
    if (id.empty() || !seen.insert(id).second || found == positionById.end())
      return std::nullopt;
    positions.push_back(found->second);
  }
  return positions;
}

// Moves members out, in the order of `positions`, and closes the gaps in one pass.
Nodes TakeOut(Nodes& container, const Positions& positions)
{
  Nodes taken;
  taken.reserve(positions.size());
  std::vector<bool> isTaken(container.size(), false);
  for (const std::size_t position : positions) {
    taken.push_back(std::move(container[position]));
    isTaken[position] = true;
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < container.size(); ++i) {
    if (isTaken[i])
      continue;
    if (kept != i)
      container[kept] = std::move(container[i]);
    ++kept;
  }
  container.resize(kept);
  return taken;
}

AssemblyTreeNode WithoutChildren(const AssemblyTreeNode& node)
{
  return {node.id, node.partId, node.transform, node.name, node.shapeName, node.isAssembly, {}};
}

bool IsUsableAssembly(const AssemblyTreeNode& node)
{
  return node.isAssembly && !node.id.empty();
}

bool IsGeneratedOccurrence(const AssemblyTreeNode& node)
{
  return !node.isAssembly && node.children.empty() && node.id.starts_with("doc_occ::") &&
         node.partId.starts_with("doc_def::");
}

bool IsGeneratedRoot(const AssemblyTreeNode& node)
{
  return node.isAssembly && node.id.starts_with("doc_root::") &&
         std::ranges::all_of(node.children, IsGeneratedOccurrence);
}

} // namespace

AssemblyTreeMgr& AssemblyTreeMgr::GetInstance()
{
  static AssemblyTreeMgr instance;
  return instance;
}

void AssemblyTreeMgr::Clear()
{
  roots.clear();
  definitions.clear();
}

bool AssemblyTreeMgr::Empty() const
{
  return roots.empty();
}

void AssemblyTreeMgr::SetRoots(const std::vector<AssemblyTreeNode>& newRoots)
{
  SetRoots(Nodes(newRoots)); // the copy comes first: the argument may be part of this tree
}

void AssemblyTreeMgr::SetRoots(std::vector<AssemblyTreeNode>&& newRoots)
{
  const Nodes replaced = std::exchange(roots, std::move(newRoots));
}

const std::vector<AssemblyTreeNode>& AssemblyTreeMgr::GetRoots() const
{
  return roots;
}

void AssemblyTreeMgr::SetDefinitions(const Definitions& newDefinitions)
{
  definitions = newDefinitions;
}

void AssemblyTreeMgr::SetDefinitions(Definitions&& newDefinitions)
{
  definitions = std::move(newDefinitions);
}

const AssemblyTreeMgr::Definitions& AssemblyTreeMgr::GetDefinitions() const
{
  return definitions;
}

const AssemblyPartDefinition* AssemblyTreeMgr::FindDefinition(const std::string& partId) const
{
  const auto found = definitions.find(partId);
  return found == definitions.end() ? nullptr : &found->second;
}

bool AssemblyTreeMgr::ContainsOnlyGeneratedDocumentNodes() const
{
  return !roots.empty() && std::ranges::all_of(roots, IsGeneratedRoot);
}

AssemblyTreeNode* AssemblyTreeMgr::FindAssembly(const std::string& id)
{
  AssemblyTreeNode* found = FindIn(roots, id);
  return found != nullptr && found->isAssembly ? found : nullptr;
}

std::vector<AssemblyTreeNode>* AssemblyTreeMgr::FindContainer(const std::string& parentId)
{
  if (parentId.empty())
    return &roots;
  AssemblyTreeNode* parent = FindAssembly(parentId);
  return parent == nullptr ? nullptr : &parent->children;
}

bool AssemblyTreeMgr::InsertAssemblyNode(const std::string& parentId, const AssemblyTreeNode& node)
{
  Nodes* container = FindContainer(parentId);
  if (!IsUsableAssembly(node) || container == nullptr)
    return false;
  AssemblyTreeNode copy = node; // first: the argument may be an ancestor of its new place
  container->push_back(std::move(copy));
  return true;
}

bool AssemblyTreeMgr::GroupNodesUnderAssembly(const std::string& parentId,
                                              const std::vector<std::string>& nodeIds,
                                              const AssemblyTreeNode& assembly)
{
  Nodes* container = FindContainer(parentId);
  if (!IsUsableAssembly(assembly) || nodeIds.empty() || container == nullptr)
    return false;
  auto positions = PositionsOf(*container, nodeIds);
  if (!positions)
    return false;
  std::ranges::sort(*positions);

  AssemblyTreeNode group = WithoutChildren(assembly);
  group.children = TakeOut(*container, *positions);
  container->insert(container->begin() + static_cast<std::ptrdiff_t>(positions->front()),
                    std::move(group));
  return true;
}

bool AssemblyTreeMgr::MoveNodesToAssembly(const std::string& sourceId,
                                          const std::vector<std::string>& nodeIds,
                                          const std::string& targetId)
{
  if (nodeIds.empty() || targetId.empty() || sourceId == targetId)
    return false;
  const AssemblyTreeNode* target = FindAssembly(targetId);
  Nodes* source = FindContainer(sourceId);
  if (target == nullptr || source == nullptr)
    return false;
  const auto positions = PositionsOf(*source, nodeIds);
  if (!positions || std::ranges::any_of(*positions, [&](std::size_t position) {
        return IsOrContains((*source)[position], target);
      }))
    return false;

  // The argument may be the id of a node that moves now.
  const std::string lastingId = targetId; // NOLINT(performance-unnecessary-copy-initialization)
  Nodes moved = TakeOut(*source, *positions);
  Nodes& children = FindAssembly(lastingId)->children;
  std::ranges::move(moved, std::back_inserter(children));
  return true;
}
