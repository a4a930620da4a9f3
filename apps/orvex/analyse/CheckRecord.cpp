#include "analyse/CheckRecord.h"

#include "analysis/ModelCheckAnalyzer.h"
#include "frame/Text.h"
#include "model/PartList.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBndLib.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <QJsonArray>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <cmath>
#include <compare>
#include <limits>
#include <map>
#include <optional>

namespace Orvex::Cli {

namespace {

using Place = std::optional<gp_Pnt>;

// Finds the sub-shapes of issues in the shape that was checked.
class IssuePlaces
{
public:
  explicit IssuePlaces(const TopoDS_Shape& checked) : shape(checked)
  {}

  // Nothing where the kernel has no answer.
  Place Of(const ModelCheckIssue& issue)
  {
    try {
      return issue.entityType == "edge" ? MiddleOf(EdgeOf(issue.subIndex))
                                        : CentreOf(PartOf(issue));
    } catch (const Standard_Failure&) {
      return std::nullopt;
    }
  }

private:
  static Place CentreOf(const TopoDS_Shape& part)
  {
    Bnd_Box box;
    BRepBndLib::Add(part, box);
    if (box.IsVoid() || box.IsOpen())
      return std::nullopt;
    return gp_Pnt((box.CornerMin().XYZ() + box.CornerMax().XYZ()) * 0.5);
  }

  static Place MiddleOf(const TopoDS_Edge& edge)
  {
    if (BRep_Tool::Degenerated(edge))
      return CentreOf(edge);
    const BRepAdaptor_Curve curve(edge);
    return curve.Value((curve.FirstParameter() + curve.LastParameter()) * 0.5);
  }

  TopoDS_Edge EdgeOf(int number)
  {
    if (facesOfEdges.IsEmpty())
      TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, facesOfEdges);
    return TopoDS::Edge(facesOfEdges.FindKey(number));
  }

  TopoDS_Shape PartOf(const ModelCheckIssue& issue)
  {
    static const std::map<std::string, TopAbs_ShapeEnum> kTypes = {
      {"wire", TopAbs_WIRE}, {"solid", TopAbs_SOLID}, {"face", TopAbs_FACE}};
    const auto type = kTypes.find(issue.entityType);
    if (type == kTypes.end())
      return shape;
    std::vector<TopoDS_Shape>& parts = partsByType[type->second];
    if (parts.empty())
      for (TopExp_Explorer part(shape, type->second); part.More(); part.Next())
        parts.push_back(part.Current());
    return parts[static_cast<std::size_t>(issue.subIndex) - 1];
  }

  const TopoDS_Shape shape;
  TopTools_IndexedDataMapOfShapeListOfShape facesOfEdges;
  std::map<TopAbs_ShapeEnum, std::vector<TopoDS_Shape>> partsByType;
};

// What was found on a shape: where it has no location if it is rigid, else where it lies.
struct Findings
{
  std::vector<ModelCheckIssue> issues;
  std::vector<Place> places;
};

// Occurrences for which the same is found: those of one definition that differ only in where they
// are. One that is scaled or mirrored stands for itself alone.
struct FindingsKey
{
  const TopoDS_TShape* definition;
  TopAbs_Orientation orientation;
  bool isRigid;
  std::size_t location;

  auto operator<=>(const FindingsKey&) const = default;
};

FindingsKey KeyOf(const TopoDS_Shape& shape)
{
  const double scale = shape.IsNull() ? 1 : shape.Location().Transformation().ScaleFactor();
  const bool isRigid = std::abs(scale - 1) < 1e-12;
  const int hash = isRigid ? 0 : shape.Location().HashCode(std::numeric_limits<int>::max());
  return {shape.TShape().get(), shape.Orientation(), isRigid, static_cast<std::size_t>(hash)};
}

Findings FindingsOf(const TopoDS_Shape& shape, const ModelCheckOptions& options)
{
  Findings findings{ModelCheckAnalyzer::Analyze({shape}, options).issues, {}};
  IssuePlaces places(shape);
  for (const ModelCheckIssue& issue : findings.issues)
    findings.places.push_back(places.Of(issue));
  return findings;
}

QJsonObject IssueJson(const NamedPart& part, const ModelCheckIssue& issue, const Place& place)
{
  QJsonObject json{{"part", part.path},
                   {"severity", TextFromBytes(issue.severity)},
                   {"code", TextFromBytes(issue.code)},
                   {"entity", TextFromBytes(issue.entityType)},
                   {"category", TextFromBytes(issue.category)},
                   {"message", TextFromBytes(issue.message)},
                   {"value", issue.value},
                   {"threshold", issue.threshold}};
  if (issue.subIndex > 0)
    json.insert("number", issue.subIndex);
  if (place) {
    const gp_Pnt there = KeyOf(part.shape).isRigid
                           ? place->Transformed(part.shape.Location().Transformation())
                           : *place;
    json.insert("point", QJsonArray{there.X(), there.Y(), there.Z()});
  }
  return json;
}

int CountOf(const QJsonArray& issues, const char* severity)
{
  return static_cast<int>(std::count_if(issues.begin(), issues.end(), [&](const QJsonValue& issue) {
    return issue["severity"].toString() == QLatin1String(severity);
  }));
}

QString PlaceText(const QJsonValue& issue)
{
  QString text = QStringLiteral("%1").arg(TerminalText(issue["part"].toString()));
  if (const int number = issue["number"].toInt(); number > 0)
    text += QStringLiteral(": %1 %2").arg(issue["entity"].toString()).arg(number);
  if (issue["threshold"].toDouble() != 0 || issue["value"].toDouble() != 0)
    text += QStringLiteral("  %1").arg(Number(issue["value"].toDouble()));
  if (const QJsonArray point = issue["point"].toArray(); !point.isEmpty())
    text += QStringLiteral("  at (%1, %2, %3)")
              .arg(Decimal(point[0].toDouble()), Decimal(point[1].toDouble()),
                   Decimal(point[2].toDouble()));
  return text;
}

} // namespace

QJsonObject CheckModel(const std::string& path, const ModelCheckOptions& options,
                       const ProgressSink& progress)
{
  const std::vector<NamedPart> parts = ReadParts({path}, progress);
  std::map<FindingsKey, Findings> findings;
  QJsonArray issues;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    progress({QStringLiteral("check"), static_cast<double>(i) / static_cast<double>(parts.size())});
    const TopoDS_Shape& shape = parts[i].shape;
    const auto [found, isNew] = findings.try_emplace(KeyOf(shape));
    if (isNew)
      found->second = FindingsOf(found->first.isRigid ? shape.Located({}) : shape, options);
    for (std::size_t j = 0; j < found->second.issues.size(); ++j)
      issues.append(IssueJson(parts[i], found->second.issues[j], found->second.places[j]));
  }
  return {{"file", TextFromBytes(path)},
          {"status", "checked"},
          {"parts", static_cast<qint64>(parts.size())},
          {"distinct", static_cast<qint64>(findings.size())},
          {"critical", CountOf(issues, "critical")},
          {"warnings", CountOf(issues, "warning")},
          {"issues", issues}};
}

QString CheckText(const QJsonObject& entry, bool all)
{
  constexpr std::size_t kShown = 5;
  std::vector<std::pair<QString, std::vector<QJsonValue>>> groups;
  for (const char* severity : {"critical", "warning"})
    for (const QJsonValue& issue : entry["issues"].toArray()) {
      if (issue["severity"].toString() != QLatin1String(severity))
        continue;
      const QString code = issue["code"].toString();
      auto group = std::find_if(groups.begin(), groups.end(),
                                [&](const auto& known) { return known.first == code; });
      if (group == groups.end())
        group = groups.insert(groups.end(), {code, {}});
      group->second.push_back(issue);
    }
  QString text = QStringLiteral("%1: %2 critical, %3 warnings in %4 parts (%5 distinct)\n")
                   .arg(TerminalText(entry["file"].toString()))
                   .arg(entry["critical"].toInt())
                   .arg(entry["warnings"].toInt())
                   .arg(entry["parts"].toInt())
                   .arg(entry["distinct"].toInt());
  for (const auto& [code, issues] : groups) {
    text += QStringLiteral("  %1  %2 (%3): %4\n")
              .arg(issues.front()["severity"].toString().leftJustified(8), code)
              .arg(issues.size())
              .arg(issues.front()["message"].toString());
    const std::size_t shown = all ? issues.size() : std::min(issues.size(), kShown);
    for (std::size_t i = 0; i < shown; ++i)
      text += QStringLiteral("      %1\n").arg(PlaceText(issues[i]));
    if (shown < issues.size())
      text += QStringLiteral("      and %1 more (-v shows them)\n").arg(issues.size() - shown);
  }
  return text;
}

} // namespace Orvex::Cli
