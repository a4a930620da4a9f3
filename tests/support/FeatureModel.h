// Features for tests of the history: each makes a cube whose edge is its parameter "size" plus the
// edges of its inputs, so that a number tells whether the right things were rebuilt.
#pragma once

#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/FeatureHistoryManager.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <BRep_Tool.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <stdexcept>

namespace OrvexTest {

inline TopoDS_Shape ShapeOn(const TDF_Label& label)
{
  return ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
}

inline double EdgeOf(const TopoDS_Shape& cube)
{
  double edge = 0;
  for (TopExp_Explorer it(cube, TopAbs_VERTEX); it.More(); it.Next())
    edge = std::max(edge, BRep_Tool::Pnt(TopoDS::Vertex(it.Current())).X());
  return edge;
}

inline double EdgeOn(const TDF_Label& label)
{
  return EdgeOf(ShapeOn(label));
}

inline TDF_Label NewCubeLabel(double edge)
{
  return ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(
    ShapeDocMgr::GetInstance()->GetDoc(), BRepPrimAPI_MakeBox(edge, edge, edge).Shape());
}

// What the next rebuild functions do.
enum class Fault { None, False, Kernel, Standard, Number };

inline bool Raise(Fault fault)
{
  switch (fault) {
  case Fault::Kernel:
    throw Standard_Failure("kernel");
  case Fault::Standard:
    throw std::runtime_error("standard");
  case Fault::Number:
    throw 5;
  default:
    return false;
  }
}

struct CubeFeatures
{
  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
  // The feature with this id fails in this way, after it has put another shape on its label.
  int faultyId = 0;
  Fault fault = Fault::None;
  std::vector<int> rebuilt;

  FeatureRebuildFunc Rebuild()
  {
    return [this](const TDF_Label& label, const FeatureParameters& parameters) {
      const FeatureHistoryItem* item = history.ResolveFeatureForRebuild(label);
      double edge = parameters.value("size").toDouble();
      for (const TDF_Label& input : item->inputs)
        edge += EdgeOn(input);
      TopoDS_Shape cube = BRepPrimAPI_MakeBox(edge, edge, edge).Shape();
      ShapeLabelMgr::GetInstance()->ConnectShapeAndLable(cube, label);
      rebuilt.push_back(item->id);
      return item->id == faultyId && fault != Fault::None ? Raise(fault) : true;
    };
  }

  int Add(const std::vector<TDF_Label>& inputs, double size)
  {
    return AddOn(NewCubeLabel(size), inputs, size);
  }

  int AddOn(const TDF_Label& label, const std::vector<TDF_Label>& inputs, double size)
  {
    return history.AddFeature("Cube", "Cube", label, inputs, {{"size", size}}, Rebuild());
  }

  // Works in place: takes the cube on its own label for its source.
  int AddInPlace(const TDF_Label& label, double size)
  {
    return history.AddFeature("Cube", "In place", label, {},
                              {{"size", size}, {"sourceBrep", QString()}}, Rebuild());
  }

  TDF_Label LabelOf(int id) const
  {
    return history.GetFeature(id)->label;
  }
};

} // namespace OrvexTest
