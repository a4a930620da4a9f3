// Computes the values of parameters that depend on one another, for one query.
//
// The parameters that the asked one depends on are strongly connected components in the sense of
// graph theory; a component of more than one parameter, or one that refers to itself, is a cycle.
// Source: R. E. Tarjan, Depth-first search and linear graph algorithms, SIAM J. Comput. 1 (1972),
// with the stack of calls as a container. Components come up with everything that they depend on
// before them, so that each parameter is evaluated when its component is complete.
#pragma once

#include <QString>
#include <QStringList>

#include <cstddef>
#include <unordered_map>
#include <vector>

struct ParametersDef;

namespace Orvex {

class ParameterResolver
{
public:
  // The real value of a record, which need not be in the table.
  double ValueOf(const ParametersDef& record);

  // The value of a text: a number, or the name of a parameter. Blanks around it are ignored.
  double ValueOf(const QString& text);

private:
  // Order of discovery; kDone once the value stands.
  static constexpr std::size_t kUnseen = 0;
  static constexpr std::size_t kDone = static_cast<std::size_t>(-1);

  struct Node
  {
    const ParametersDef* record = nullptr;
    QStringList references;
    qsizetype nextReference = 0;
    std::size_t order = kUnseen;
    // The earliest parameter on the path that this one is known to lead back to.
    std::size_t lowest = kUnseen;
    bool leadsToItself = false;
    double value = 0.0;
  };

  Node& Visit(const ParametersDef& record);
  void Advance(Node& node);
  void Leave(Node& node);
  void CloseComponent(Node& root);
  double Compute(const Node& node);
  double ReferenceValue(const QString& name);

  // Nodes of a map keep their address when it grows.
  std::unordered_map<const ParametersDef*, Node> nodes;
  std::vector<Node*> path;
  std::vector<Node*> component;
  std::size_t discovered = kUnseen;
};

} // namespace Orvex
