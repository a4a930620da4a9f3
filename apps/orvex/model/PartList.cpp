#include "model/PartList.h"

#include "frame/Text.h"
#include "info/DocumentRecord.h"
#include "info/InputCheck.h"
#include "info/StepInfo.h"
#include "model/Documents.h"
#include "model/ShapeFiles.h"

#include <BRep_Builder.hxx>
#include <TDF_LabelSequence.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Iterator.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <filesystem>
#include <iterator>
#include <map>

namespace Orvex::Cli {

namespace {

using Nodes = std::vector<AssemblyTreeNode>;
using Shapes = std::vector<TopoDS_Shape>;

class Lister
{
public:
  explicit Lister(std::vector<NamedPart>& parts_) : parts(parts_)
  {}

  // Nodes and shapes that belong together one by one.
  void AddNodes(const Nodes& nodes, const Shapes& shapes, const QString& above)
  {
    std::vector<QString> names;
    for (const AssemblyTreeNode& node : nodes)
      names.push_back(TextFromBytes(node.name));
    const std::vector<QString> paths = Below(above, names);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      if (nodes[i].isAssembly)
        AddAssembly(nodes[i], shapes[i], paths[i]);
      else
        parts.push_back({names[i], paths[i], shapes[i]});
    }
  }

  void AddSolids(const Shapes& shapes, const QString& name, const QString& path)
  {
    Shapes solids;
    for (const TopoDS_Shape& shape : shapes)
      AppendSolids(shape, solids);
    const std::vector<QString> paths = Below(path, std::vector(solids.size(), name));
    for (std::size_t i = 0; i < solids.size(); ++i)
      parts.push_back({name, paths[i], solids[i]});
  }

private:
  void AddAssembly(const AssemblyTreeNode& node, const TopoDS_Shape& shape, const QString& path)
  {
    Shapes children;
    for (TopoDS_Iterator child(shape); child.More(); child.Next())
      children.push_back(child.Value());
    if (children.size() == node.children.size())
      AddNodes(node.children, children, path);
    else
      AddSolids({shape}, TextFromBytes(node.name), path);
  }

  // The solids, then as one shape what stands beside them; all of a shape without solids.
  static void AppendSolids(const TopoDS_Shape& shape, Shapes& solids)
  {
    const std::size_t before = solids.size();
    for (TopExp_Explorer solid(shape, TopAbs_SOLID); solid.More(); solid.Next())
      solids.push_back(solid.Current());
    const TopoDS_Shape rest = solids.size() == before ? shape : BesideSolids(shape);
    if (!rest.IsNull())
      solids.push_back(rest);
  }

  static TopoDS_Shape BesideSolids(const TopoDS_Shape& shape)
  {
    static constexpr TopAbs_ShapeEnum kTypes[] = {TopAbs_SOLID, TopAbs_SHELL, TopAbs_FACE,
                                                  TopAbs_WIRE,  TopAbs_EDGE,  TopAbs_VERTEX};
    TopoDS_Compound rest;
    for (std::size_t i = 1; i < std::size(kTypes); ++i)
      for (TopExp_Explorer part(shape, kTypes[i], kTypes[i - 1]); part.More(); part.Next()) {
        if (rest.IsNull())
          BRep_Builder().MakeCompound(rest);
        BRep_Builder().Add(rest, part.Current());
      }
    return rest;
  }

  static std::vector<QString> Below(const QString& above, const std::vector<QString>& names)
  {
    std::map<QString, int> counts, met;
    for (const QString& name : names)
      ++counts[name];
    std::vector<QString> paths;
    for (const QString& name : names) {
      QString path = above.isEmpty() ? name : above + QLatin1Char('/') + name;
      if (counts[name] > 1)
        path += QStringLiteral(" #%1").arg(++met[name]);
      paths.push_back(path);
    }
    return paths;
  }

  std::vector<NamedPart>& parts;
};

// The reader gives the shapes of the components of its roots, in the order of the tree.
bool AddByTree(const Nodes& roots, const std::vector<StepShapeData>& items, const QString& above,
               Lister& lister)
{
  std::size_t expected = 0;
  for (const AssemblyTreeNode& root : roots)
    expected += root.isAssembly ? root.children.size() : 1;
  if (expected != items.size())
    return false;
  std::size_t next = 0;
  const auto take = [&](std::size_t count) {
    Shapes shapes;
    for (; count > 0; --count)
      shapes.push_back(items[next++].shape);
    return shapes;
  };
  for (const AssemblyTreeNode& root : roots) {
    const QString name = TextFromBytes(root.name);
    if (root.isAssembly)
      lister.AddNodes(root.children, take(root.children.size()),
                      above.isEmpty() ? name : above + QLatin1Char('/') + name);
    else
      lister.AddNodes({root}, take(1), above);
  }
  return true;
}

void AddStep(const std::string& file, const QString& above, const ProgressSink& progress,
             Lister& lister)
{
  const std::vector<StepShapeData> items = ReadStepModel(file, progress);
  if (AddByTree(AssemblyTreeMgr::GetInstance().GetRoots(), items, above, lister))
    return;
  for (const StepShapeData& item : items) {
    const QString name = TextFromBytes(item.name);
    lister.AddSolids({item.shape}, name, above.isEmpty() ? name : above + QLatin1Char('/') + name);
  }
}

void AddDocument(const std::string& file, const QString& above, Lister& lister)
{
  const OpenDocument opened(file);
  TDF_LabelSequence free;
  XCAFDoc_DocumentTool::ShapeTool(opened.Get()->Main())->GetFreeShapes(free);
  Shapes shapes;
  for (const TDF_Label& label : free)
    shapes.push_back(XCAFDoc_ShapeTool::GetShape(label));
  lister.AddNodes(TreeOf(free).GetRoots(), shapes, above);
}

void AddFile(const std::string& file, const QString& above, const ProgressSink& progress,
             Lister& lister)
{
  const FileFormat format = FormatOfName(file).value_or(FileFormat::Step);
  if (const auto problem = CheckInput(file, format))
    throw *problem;
  if (format == FileFormat::Step)
    return AddStep(file, above, progress, lister);
  progress({QStringLiteral("parse"), -1.0});
  if (format == FileFormat::Document)
    return AddDocument(file, above, lister);
  const TopoDS_Shape shape = format == FileFormat::Brep ? ReadBrep(file) : ReadIges(file).shape;
  const QString stem = TextFromBytes(std::filesystem::path(file).stem().string());
  lister.AddSolids({shape}, stem, above.isEmpty() ? stem : above);
}

} // namespace

std::vector<NamedPart> ReadParts(const std::vector<std::string>& files,
                                 const ProgressSink& progress)
{
  std::vector<NamedPart> parts;
  Lister lister(parts);
  for (const std::string& file : files) {
    const QString above = files.size() > 1 ? TextFromBytes(file) : QString();
    AddFile(file, above, progress, lister);
  }
  return parts;
}

TopoDS_Shape ReadWhole(const std::string& file, const ProgressSink& progress)
{
  const std::vector<NamedPart> parts = ReadParts({file}, progress);
  if (parts.size() == 1)
    return parts.front().shape;
  TopoDS_Compound compound;
  BRep_Builder().MakeCompound(compound);
  for (const NamedPart& part : parts)
    if (!part.shape.IsNull())
      BRep_Builder().Add(compound, part.shape);
  return compound;
}

} // namespace Orvex::Cli
