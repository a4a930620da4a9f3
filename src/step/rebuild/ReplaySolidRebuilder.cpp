#include "step/rebuild/ReplaySolidRebuilder.h"

#include "analysis/ShapeEquivalenceAnalyzer.h"
#include "step/rebuild/internal/OperandAssembly.h"
#include "step/rebuild/internal/OperandForms.h"
#include "step/rebuild/internal/OperandPartition.h"
#include "step/rebuild/internal/PayloadTopology.h"
#include "step/rebuild/internal/PrimitiveRebuild.h"

#include <BOPTools_AlgoTools.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_Sewing.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <ShapeFix_Shape.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Solid.hxx>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string_view>

namespace Orvex {

namespace {

// Of the size of a body: as far as numbers of six digits may be off.
constexpr double kRounding = 1e-5;

double SizeOf(const TopoDS_Shape& shape)
{
  Bnd_Box box;
  BRepBndLib::Add(shape, box);
  return box.IsVoid() ? 0 : std::sqrt(box.SquareExtent());
}

ReplayRebuild Failed(std::string reason)
{
  return {{}, {}, std::move(reason)};
}

// What the kernel throws becomes the reason.
ReplayRebuild Guarded(const std::function<ReplayRebuild()>& rebuild)
{
  try {
    return rebuild();
  } catch (const Standard_Failure& failure) {
    return Failed(std::string("the kernel fails: ").append(failure.GetMessageString()));
  }
}

std::vector<TopoDS_Face> BuiltFacesOf(const PayloadTopology& topology)
{
  std::vector<TopoDS_Face> faces;
  for (const auto& built : topology.Faces())
    if (!built.face.IsNull())
      faces.push_back(built.face);
  return faces;
}

std::vector<ReplayId> IdsOf(const PayloadTopology& topology)
{
  std::vector<ReplayId> ids;
  for (const auto& built : topology.Faces())
    ids.push_back(built.id);
  return ids;
}

std::vector<TopoDS_Face> FacesIn(const TopoDS_Shape& shape)
{
  std::vector<TopoDS_Face> faces;
  for (TopExp_Explorer at(shape, TopAbs_FACE); at.More(); at.Next())
    faces.push_back(TopoDS::Face(at.Current()));
  return faces;
}

std::string WhyFaceFails(const ReplayFaceFailure& failure, std::size_t count)
{
  std::string text = "face ";
  text.append(std::to_string(failure.faceId)).append(" cannot be built: ").append(failure.reason);
  if (count > 1)
    text.append("; nor can ").append(std::to_string(count - 1)).append(" others");
  return text;
}

TopoDS_Shell ShellOf(const std::vector<TopoDS_Face>& faces)
{
  const BRep_Builder builder;
  TopoDS_Shell shell;
  builder.MakeShell(shell);
  for (const TopoDS_Face& face : faces)
    builder.Add(shell, face);
  shell.Closed(BRep_Tool::IsClosed(shell));
  return shell;
}

// By the places of their edges.
TopoDS_Shape Sewn(const std::vector<TopoDS_Face>& faces)
{
  BRepBuilderAPI_Sewing sewing(std::max(kRounding * SizeOf(ShellOf(faces)), 1e-6));
  for (const TopoDS_Face& face : faces)
    sewing.Add(face);
  sewing.Perform();
  return sewing.SewedShape();
}

// A shell for each part that hangs together: a body with cavities has several.
TopoDS_Solid SolidOf(const TopoDS_Shape& faces)
{
  TopTools_ListOfShape parts;
  BOPTools_AlgoTools::MakeConnexityBlocks(faces, TopAbs_EDGE, TopAbs_FACE, parts);
  const BRep_Builder builder;
  TopoDS_Solid solid;
  builder.MakeSolid(solid);
  for (const TopoDS_Shape& part : parts) {
    const TopoDS_Shell shell = ShellOf(FacesIn(part));
    if (!shell.Closed())
      return {};
    builder.Add(solid, shell);
  }
  return solid;
}

// Rounded numbers may leave the kernel's check something to find that its repair puts right.
TopoDS_Shape Repaired(const TopoDS_Solid& solid)
{
  if (BRepCheck_Analyzer(solid).IsValid())
    return solid;
  const Handle(ShapeFix_Shape) repair = new ShapeFix_Shape(solid);
  repair->Perform();
  const TopoDS_Shape repaired = repair->Shape();
  return BRepCheck_Analyzer(repaired).IsValid() ? repaired : TopoDS_Shape(solid);
}

bool IsEquivalent(const TopoDS_Shape& body, const TopoDS_Shape& candidate)
{
  return ShapeEquivalenceAnalyzer::Compare(body, candidate, ShapeEquivalenceOptions()).equivalent;
}

std::vector<OperandShape> ShapesOf(const Partition& partition)
{
  std::vector<OperandShape> shapes;
  for (const Operand& operand : partition.operands)
    shapes.push_back({operand.solid, operand.adds, operand.depth});
  return shapes;
}

const char* RoleOf(const Operand& operand)
{
  if (!operand.adds)
    return "cut";
  return operand.depth == 0 ? "base" : "fuse";
}

// An attempt to put a body together.
struct Attempt
{
  // The parts as their forms make them, not as their faces do.
  bool formed;
  bool fuzzy;
};

constexpr Attempt kAttempts[] = {{true, false}, {true, true}, {false, false}, {false, true}};

// A body in parts, and what each part can be made by.
class FeatureRebuild
{
public:
  FeatureRebuild(const TopoDS_Shape& whole, const Partition& parts)
      : body(whole), partition(parts), joined(ShapesOf(parts)), formed(joined)
  {
    for (std::size_t at = 0; at < formed.size(); ++at) {
      const FormedBody form = FormOf(partition.operands[at].solid);
      forms.push_back(form.form);
      if (!form.shape.IsNull())
        formed[at].shape = form.shape;
    }
  }

  ReplayRebuild Run() const
  {
    const bool anyForm =
      std::any_of(forms.begin(), forms.end(), [](const auto& form) { return !form.empty(); });
    if (forms.size() == 1 && !anyForm)
      return Failed("it is one part, and no extrusion, revolution or loft makes it");
    for (const Attempt& attempt : kAttempts) {
      if (attempt.formed ? !anyForm : forms.size() == 1)
        continue;
      const TopoDS_Shape shape = Try(attempt);
      if (!shape.IsNull())
        return {shape, Told(attempt), {}};
    }
    return Failed("its parts, put together, do not give the body");
  }

private:
  TopoDS_Shape Try(const Attempt& attempt) const
  {
    try {
      const TopoDS_Shape shape =
        PutTogether(attempt.formed ? formed : joined, attempt.fuzzy ? kRounding * SizeOf(body) : 0);
      return !shape.IsNull() && IsEquivalent(body, shape) ? shape : TopoDS_Shape();
    } catch (const Standard_Failure&) {
      return {};
    }
  }

  std::vector<ReplayRebuiltOperand> Told(const Attempt& attempt) const
  {
    std::vector<ReplayRebuiltOperand> told;
    for (std::size_t at = 0; at < forms.size(); ++at) {
      const bool byForm = attempt.formed && !forms[at].empty();
      told.push_back({partition.operands[at].faceIds, RoleOf(partition.operands[at]),
                      byForm ? forms[at] : "faces"});
    }
    return told;
  }

  const TopoDS_Shape body;
  const Partition& partition;
  const std::vector<OperandShape> joined;
  std::vector<OperandShape> formed;
  // Empty for a part without one.
  std::vector<std::string> forms;
};

} // namespace

ReplaySolidRebuilder::ReplaySolidRebuilder(const std::vector<ReplayFacePayload>& faces)
    : payloads(faces), topology(std::make_unique<const PayloadTopology>(faces))
{}

ReplaySolidRebuilder::~ReplaySolidRebuilder() = default;

std::vector<ReplayFaceFailure> ReplaySolidRebuilder::Failures() const
{
  std::vector<ReplayFaceFailure> failures;
  for (const auto& built : topology->Faces())
    if (built.face.IsNull())
      failures.push_back({built.id, built.failure});
  return failures;
}

TopoDS_Shape ReplaySolidRebuilder::Face(ReplayId id) const
{
  for (const auto& built : topology->Faces())
    if (built.id == id)
      return built.face;
  return {};
}

TopoDS_Shape ReplaySolidRebuilder::Shell(const std::vector<ReplayId>& ids) const
{
  std::vector<TopoDS_Face> faces;
  for (const ReplayId id : ids)
    if (const TopoDS_Shape face = Face(id); !face.IsNull())
      faces.push_back(TopoDS::Face(face));
  if (faces.empty())
    return {};
  const TopoDS_Shell shell = ShellOf(faces);
  return shell.Closed() ? TopoDS_Shape(shell) : Sewn(faces);
}

ReplayRebuild ReplaySolidRebuilder::FromFaces() const
{
  return Guarded([&] {
    if (const auto failures = Failures(); !failures.empty())
      return Failed(WhyFaceFails(failures.front(), failures.size()));
    std::vector<TopoDS_Face> faces = BuiltFacesOf(*topology);
    if (faces.empty())
      return Failed("there are no faces");
    TopoDS_Solid solid = SolidOf(ShellOf(faces));
    if (solid.IsNull())
      solid = SolidOf(Sewn(faces));
    if (solid.IsNull())
      return Failed("its faces leave an opening");
    return ReplayRebuild{Repaired(solid), {{IdsOf(*topology), "base", "faces"}}, {}};
  });
}

ReplayRebuild ReplaySolidRebuilder::FromFeatures() const
{
  const ReplayRebuild whole = FromFaces();
  if (whole.shape.IsNull())
    return whole;
  return Guarded([&] {
    Partition partition = PartitionOf(topology->Faces());
    if (partition.operands.empty())
      partition = Undivided(topology->Faces());
    if (partition.operands.empty())
      return Failed(partition.failure);
    return FeatureRebuild(whole.shape, partition).Run();
  });
}

ReplayRebuild ReplaySolidRebuilder::FromPrimitive(const std::string& kind) const
{
  return Guarded([&] {
    std::string failure;
    const TopoDS_Solid solid = PrimitiveOf(kind, payloads, failure);
    if (solid.IsNull())
      return Failed(failure);
    constexpr std::string_view kPrefix = "primitive_";
    return ReplayRebuild{solid, {{IdsOf(*topology), "base", kind.substr(kPrefix.size())}}, {}};
  });
}

} // namespace Orvex
