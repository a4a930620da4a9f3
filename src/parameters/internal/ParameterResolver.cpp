#include "parameters/internal/ParameterResolver.h"

#include "parameters/ExpressionEngine.h"

#include <QStringList>

#include <algorithm>

namespace Orvex {

namespace {

using Table = GlobalParaMeterMgr::Table;

// Finds the strongly connected components of the real parameters below one of them and evaluates
// each component when it is complete, so that what a parameter depends on has its value before it.
// A component of several parameters, or of one that names itself, is a cycle: its values are 0.
// Source: R. Tarjan, Depth-first search and linear graph algorithms, 1972; with a stack of its own
// in the place of recursion.
class Resolver
{
public:
  explicit Resolver(const Table& parameters) : table(parameters)
  {}

  double Resolve(const QString& root)
  {
    Enter(root);
    while (!path.empty())
      Step();
    return nodes.at(root).value;
  }

private:
  struct Node
  {
    const ParametersDef* definition = nullptr;
    QStringList references;
    qsizetype next = 0; // of the references
    int index = 0;      // order of discovery
    int lowest = 0;     // lowest index known to be reachable
    bool open = true;   // its component is not complete
    bool namesItself = false;
    double value = 0.0;
  };

  bool IsReal(const QString& name) const
  {
    const auto found = table.find(name);
    return found != table.end() && found->second.type == eREAL_PARAMETER;
  }

  void Enter(const QString& name)
  {
    Node& node = nodes[name];
    node.definition = &table.at(name);
    node.references = ReferencesOf(*node.definition);
    node.index = node.lowest = static_cast<int>(nodes.size());
    path.push_back(name);
    component.push_back(name);
  }

  void Step()
  {
    Node& node = nodes.at(path.back());
    if (node.next < node.references.size())
      Follow(node, node.references[node.next++]);
    else
      Leave(node);
  }

  void Follow(Node& node, const QString& reference)
  {
    if (!IsReal(reference))
      return;
    const auto known = nodes.find(reference);
    if (known == nodes.end())
      return Enter(reference);
    if (known->second.open)
      node.lowest = std::min(node.lowest, known->second.index);
    node.namesItself = node.namesItself || &known->second == &node;
  }

  void Leave(Node& node)
  {
    const QString name = path.back();
    path.pop_back();
    if (!path.empty())
      nodes.at(path.back()).lowest = std::min(nodes.at(path.back()).lowest, node.lowest);
    if (node.lowest == node.index)
      Complete(name);
  }

  void Complete(const QString& first)
  {
    const auto begin = std::find(component.rbegin(), component.rend(), first).base() - 1;
    for (auto member = begin; member != component.end(); ++member)
      nodes.at(*member).open = false;
    Node& node = nodes.at(first);
    if (component.end() - begin == 1 && !node.namesItself)
      node.value = ValueOf(*node.definition, node.references);
    component.erase(begin, component.end());
  }

  double ValueOf(const ParametersDef& definition, const QStringList& references) const
  {
    if (definition.expression.empty())
      return references.isEmpty() ? definition.valueText.trimmed().toDouble()
                                  : ValueOfName(references.front());
    std::map<std::string, double> variables;
    for (const QString& reference : references)
      variables[reference.toStdString()] = ValueOfName(reference);
    return ExpressionEngine::CalculateExpress(definition.expression, variables);
  }

  double ValueOfName(const QString& name) const
  {
    const auto node = nodes.find(name);
    return node != nodes.end() ? node->second.value
                               : GlobalParaMeterMgr::GetParameterRawValue(name).toDouble();
  }

  const Table& table;
  std::unordered_map<QString, Node> nodes;
  std::vector<QString> path;
  std::vector<QString> component;
};

} // namespace

QStringList ReferencesOf(const ParametersDef& definition)
{
  if (!definition.expression.empty())
    return definition.expressionParameters.split(QLatin1Char(','), Qt::KeepEmptyParts,
                                                 Qt::CaseSensitive);
  const QString text = definition.valueText.trimmed();
  bool isNumber = false;
  text.toDouble(&isNumber);
  return isNumber ? QStringList() : QStringList(text);
}

double ResolveReal(const Table& table, const QString& name)
{
  return Resolver(table).Resolve(name);
}

} // namespace Orvex
