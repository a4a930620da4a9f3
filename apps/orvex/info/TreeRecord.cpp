#include "info/TreeRecord.h"

#include "frame/Text.h"

#include <algorithm>

namespace Orvex::Cli {

namespace {

// Names the thing that a node is an occurrence of. For an assembly the tree keeps no definition;
// but two occurrences of one assembly have children with equal ids, and different ones never do.
std::string DefinitionKey(const AssemblyTreeNode& node)
{
  if (!node.isAssembly)
    return node.partId;
  return node.children.empty() ? node.id : "children of " + node.children.front().id;
}

class Recorder
{
public:
  Recorder(const AssemblyTreeMgr& tree_, const std::map<std::string, QString>& colours_)
      : tree(tree_), colours(colours_)
  {}

  TreeRecord Record()
  {
    for (const AssemblyTreeNode& root : tree.GetRoots())
      CountUses(root);
    for (const AssemblyTreeNode& root : tree.GetRoots())
      record.roots.append(RecordNode(root, 0));
    return record;
  }

private:
  void CountUses(const AssemblyTreeNode& node)
  {
    ++uses[DefinitionKey(node)];
    for (const AssemblyTreeNode& child : node.children)
      CountUses(child);
  }

  QJsonObject RecordNode(const AssemblyTreeNode& node, int depth)
  {
    const std::string key = DefinitionKey(node);
    const int occurrence = ++met[key];
    if (occurrence == 1 && !node.isAssembly)
      RecordDefinition(node.partId, uses[key]);
    record.occurrences += depth > 0;
    record.leaves += node.children.empty();
    record.depth = std::max(record.depth, depth);

    QJsonObject json{{"id", TextFromBytes(node.id)},
                     {"name", TextFromBytes(node.name)},
                     {"kind", node.isAssembly ? "assembly" : "part"},
                     {"occurrence", occurrence},
                     {"of", uses[key]},
                     {"placement", Placement(node.transform)}};
    node.isAssembly ? json.insert("children", RecordChildren(node, depth))
                    : json.insert("definition", TextFromBytes(node.partId));
    if (const auto colour = colours.find(node.shapeName); colour != colours.end())
      json.insert("color", colour->second);
    return json;
  }

  QJsonArray RecordChildren(const AssemblyTreeNode& node, int depth)
  {
    QJsonArray children;
    for (const AssemblyTreeNode& child : node.children)
      children.append(RecordNode(child, depth + 1));
    return children;
  }

  void RecordDefinition(const std::string& partId, int count)
  {
    const AssemblyPartDefinition* part = tree.FindDefinition(partId);
    record.definitions.append(QJsonObject{{"id", TextFromBytes(partId)},
                                          {"name", part ? TextFromBytes(part->name) : QString()},
                                          {"occurrences", count}});
  }

  static QJsonArray Placement(const AssemblyTransform& transform)
  {
    QJsonArray values;
    for (const double value : transform.matrix)
      values.append(value);
    return values;
  }

  const AssemblyTreeMgr& tree;
  const std::map<std::string, QString>& colours;
  std::map<std::string, int> uses, met;
  TreeRecord record;
};

} // namespace

TreeRecord RecordTree(const AssemblyTreeMgr& tree, const std::map<std::string, QString>& colours)
{
  return Recorder(tree, colours).Record();
}

} // namespace Orvex::Cli
