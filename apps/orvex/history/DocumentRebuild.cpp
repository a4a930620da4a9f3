#include "history/DocumentRebuild.h"

#include "create/ParameterInput.h"
#include "creators/KindShapeParaCreator.h"
#include "document/DocumentCommand.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/FeatureHistoryManager.h"
#include "features/FeatureTree.h"
#include "features/GlobalParameterChange.h"
#include "features/ParametricFeatureManager.h"
#include "frame/Failure.h"
#include "frame/Text.h"
#include "history/ParameterTarget.h"
#include "model/Documents.h"
#include "model/ShapeRecord.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <BRepBndLib.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <Bnd_Box.hxx>
#include <QJsonArray>
#include <TopExp_Explorer.hxx>

#include <chrono>
#include <map>
#include <memory>

namespace Orvex::Cli {

namespace {

TopoDS_Shape ShapeOn(const TDF_Label& label)
{
  return ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
}

TDF_Label LabelOf(const std::string& key)
{
  return LabelOfEntry(ShapeDocMgr::GetInstance()->GetDoc(), key);
}

QString TitleOf(const std::string& key)
{
  const FeatureHistoryItem* item =
    FeatureHistoryManager::GetInstance().GetFeatureByLabel(LabelOf(key));
  return item == nullptr || item->name.empty() ? TextFromBytes(key) : TextFromBytes(item->name);
}

// The kernel makes shapes of values that it cannot work with afterwards.
bool HasSize(const TopoDS_Shape& shape)
{
  Bnd_Box box;
  BRepBndLib::Add(shape, box);
  return !BoxJson(box).isNull();
}

Failure Unbuilt(const std::string& key, const QString& reason, const QString& advice = {})
{
  return {ExitCode::KernelFailure, {}, TitleOf(key), reason, advice};
}

// The graph of the document in which each feature notes how its rebuild went.
class WatchedGraph
{
public:
  struct Run
  {
    double seconds = 0.0;
    QString problem;
  };

  WatchedGraph()
  {
    // The graph is filled when it is switched on.
    graph.SetEnabled(false);
    graph.SetEnabled(true);
    for (const std::string& key : graph.RegisteredFeatureKeys())
      Watch(key, *graph.FindFeature(key));
  }

  // The notes end with this object.
  ~WatchedGraph()
  {
    graph.ClearRegisteredState();
  }
  WatchedGraph(const WatchedGraph&) = delete;
  WatchedGraph& operator=(const WatchedGraph&) = delete;

  // A changed shape is rebuilt, also one of a kind that the history does not enter in the graph.
  void MarkDirty(const TDF_Label& shape)
  {
    const std::string key = EntryOf(shape);
    const ShapeKind* kind = KindOn(shape);
    if (graph.FindFeature(key) == nullptr && kind != nullptr)
      Watch(key, RecordOf(shape, *kind));
    graph.MarkDirty(key);
  }

  // What RecomputeAllDirty rebuilt and, first of all, what it could not.
  void RequireSound() const
  {
    for (const auto& [key, run] : runs)
      if (!run.problem.isEmpty())
        throw Unbuilt(key, run.problem);
    for (const std::string& key : graph.GetLastRebuiltFeatureKeys())
      RequireSound(key);
  }

  QJsonArray TraceJson() const
  {
    QJsonArray trace;
    for (const std::string& key : graph.GetLastRebuiltFeatureKeys())
      trace.append(QJsonObject{{"label", TextFromBytes(key)},
                               {"name", TitleOf(key)},
                               {"type", TextFromBytes(graph.FindFeature(key)->type)},
                               {"seconds", runs.at(key).seconds}});
    return trace;
  }

private:
  void Watch(const std::string& key, ParametricFeatureManager::FeatureInfo info)
  {
    shapesBefore[key] = ShapeOn(LabelOf(key));
    info.rebuild = [this, key, rebuild = info.rebuild] { return RunWatched(key, rebuild); };
    graph.RegisterFeature(LabelOf(key), info);
  }

  static ParametricFeatureManager::FeatureInfo RecordOf(const TDF_Label& shape,
                                                        const ShapeKind& kind)
  {
    ParametricFeatureManager::FeatureInfo info;
    info.key = EntryOf(shape);
    info.type = kind.word;
    info.rebuild = RebuildOf(kind, shape);
    for (const ParameterField& field : kind.fields)
      if (const TDF_Label parameter = ChildByName(shape, field.name); !parameter.IsNull())
        info.paramLabels[field.name] = EntryOf(parameter);
    return info;
  }

  bool RunWatched(const std::string& key, const std::function<bool()>& rebuild)
  {
    Run& run = runs[key];
    const auto start = std::chrono::steady_clock::now();
    try {
      if (!rebuild())
        run.problem = QStringLiteral("it cannot be rebuilt: an operand is missing, or the kernel "
                                     "gave up");
    } catch (...) {
      run.problem = QStringLiteral("the kernel refuses its parameters: ") +
                    FailureOfCurrentException(ExitCode::KernelFailure).reason;
    }
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return run.problem.isEmpty();
  }

  void RequireSound(const std::string& key) const
  {
    const TDF_Label label = LabelOf(key);
    RequireExpressionsWork(key);
    RequireInRange(key, label);
    const TopoDS_Shape shape = ShapeOn(label);
    if (shape.IsPartner(shapesBefore.at(key)))
      throw Unbuilt(key, QStringLiteral("no such shape can be made"), AllowedOn(label));
    if (!TopExp_Explorer(shape, TopAbs_VERTEX).More())
      throw Unbuilt(key, QStringLiteral("nothing is left of it"));
    if (!HasSize(shape))
      throw Unbuilt(key, QStringLiteral("the result has no end"), AllowedOn(label));
    if (!BRepCheck_Analyzer(shape).IsValid())
      throw Unbuilt(key, QStringLiteral("the result is not valid (BRepCheck)"));
  }

  void RequireExpressionsWork(const std::string& key) const
  {
    for (const auto& [name, parameterKey] : graph.FindFeature(key)->paramLabels) {
      const std::string expression = graph.GetParamExpression(LabelOf(parameterKey));
      double value = 0.0;
      if (!expression.empty() && !graph.EvaluateExpression(key, expression, value))
        throw Failure{ExitCode::Usage,
                      {},
                      QStringLiteral("%1: %2").arg(TitleOf(key), TextFromBytes(name)),
                      QStringLiteral("\"%1\" has no value").arg(TextFromBytes(expression)),
                      QStringLiteral("it can use the feature's own numbers and the global "
                                     "parameters")};
    }
  }

  // A creator passes silently over what it does not take.
  void RequireInRange(const std::string& key, const TDF_Label& label) const
  {
    const ShapeKind* kind = KindOn(label);
    if (kind == nullptr)
      return;
    const std::unique_ptr<KindShapeParaCreator> creator(kind->make());
    for (const HeldParameter& held : creator->HeldParameters(label)) {
      const double* number = std::get_if<double>(&held.value);
      if (number != nullptr && held.reference.empty() && !held.field->range.Holds(*number))
        throw Unbuilt(key,
                      QStringLiteral("%1 %2 is out of range")
                        .arg(TextFromBytes(held.field->name), Number(*number)),
                      QStringLiteral("allowed: ") + AllowedText(*held.field));
    }
  }

  static const ShapeKind* KindOn(const TDF_Label& label)
  {
    const auto code = ValidTypeOf(label);
    return code ? KindOfCode(*code) : nullptr;
  }

  static QString AllowedOn(const TDF_Label& label)
  {
    const ShapeKind* kind = KindOn(label);
    return kind == nullptr ? QString() : AllowedText(*kind);
  }

  ParametricFeatureManager& graph = ParametricFeatureManager::GetInstance();
  std::map<std::string, TopoDS_Shape> shapesBefore;
  std::map<std::string, Run> runs;
};

void ApplyChanges(const RebuildRequest& request, WatchedGraph& graph)
{
  const GlobalParameterChange globals;
  for (const std::string& input : request.globals)
    SetGlobalParameter(input);
  globals.MarkDirty();
  for (const std::string& input : request.values) {
    const ParameterTarget target = TargetOf(input);
    SetValue(target);
    ParametricFeatureManager::GetInstance().MarkDirtyFromParam(target.parameter);
    graph.MarkDirty(target.shape);
  }
  for (const std::string& input : request.expressions) {
    const ParameterTarget target = TargetOf(input);
    SetExpression(target);
    graph.MarkDirty(target.shape);
  }
}

void Recompute(const RebuildRequest& request)
{
  auto& graph = ParametricFeatureManager::GetInstance();
  if (request.values.empty() && request.expressions.empty() && request.globals.empty())
    graph.RecomputeAllRegisteredFeatures(true);
  else
    graph.RecomputeAllDirty(true);
}

void Save(const RebuildRequest& request, const RebuildTargets& targets)
{
  StoreFeatureTree();
  if (!SaveDocument(ShapeDocMgr::GetInstance()->GetDoc(), targets.document))
    throw Failure{ExitCode::Partial,
                  TextFromBytes(request.path),
                  {},
                  QStringLiteral("the kernel could not write the result"),
                  {}};
  if (QString error; !targets.parameters.empty() &&
                     !GlobalParaMeterMgr::SaveToFile(TextFromBytes(targets.parameters), &error))
    throw Failure{ExitCode::Partial, TextFromBytes(request.path), {}, error, {}};
}

} // namespace

QJsonObject RebuildDocument(const RebuildRequest& request, const RebuildTargets& targets)
{
  const OpenModel model(request.path);
  WatchedGraph graph;
  DocumentCommand command(ShapeDocMgr::GetInstance()->GetDoc());
  ApplyChanges(request, graph);
  Recompute(request);
  graph.RequireSound();
  command.Commit();
  QJsonObject rebuilt{{"rebuilt", graph.TraceJson()}};
  Save(request, targets);
  return rebuilt;
}

QString RebuildText(const QJsonObject& rebuilt)
{
  constexpr double kMilliseconds = 1000.0;
  const QJsonArray trace = rebuilt.value("rebuilt").toArray();
  QString text = trace.isEmpty() ? QStringLiteral("nothing to rebuild\n") : QString();
  for (const QJsonValue& feature : trace)
    text +=
      QStringLiteral("rebuilt  %1 \"%2\"  [%3]  %4 ms\n")
        .arg(TerminalText(feature["type"].toString()), TerminalText(feature["name"].toString()),
             feature["label"].toString(), Decimal(feature["seconds"].toDouble() * kMilliseconds));
  return text +
         QStringLiteral("written  %1\n").arg(TerminalText(rebuilt.value("output").toString()));
}

} // namespace Orvex::Cli
