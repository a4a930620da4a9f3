#include "pick/PickRecord.h"

#include "frame/Failure.h"
#include "frame/Text.h"
#include "model/PartList.h"
#include "picking/OCCPickingSystem.h"

#include <QJsonArray>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <array>
#include <charconv>
#include <cmath>
#include <fstream>

namespace Orvex::Cli {

namespace {

struct LevelWords
{
  const char* level;
  // What the level reports.
  const char* part;
  TopAbs_ShapeEnum type;
};

const LevelWords& WordsOf(PickingLevel level)
{
  static constexpr LevelWords kWords[] = {{"vertex", "vertex", TopAbs_VERTEX},
                                          {"edge", "edge", TopAbs_EDGE},
                                          {"face", "face", TopAbs_FACE},
                                          {"solid", "face", TopAbs_FACE}};
  return kWords[static_cast<std::size_t>(level)];
}

QJsonArray ToJson(const gp_XYZ& vector)
{
  return {vector.X(), vector.Y(), vector.Z()};
}

// Numbers the vertices, edges or faces of each part as they are met, from 1.
class Numbering
{
public:
  Numbering(const std::vector<NamedPart>& numbered, TopAbs_ShapeEnum numberedType)
      : parts(numbered), type(numberedType), maps(numbered.size())
  {}

  int NumberOf(const TopoDS_Shape& shape, std::size_t part)
  {
    TopTools_IndexedMapOfShape& map = maps[part];
    if (map.IsEmpty())
      TopExp::MapShapes(parts[part].shape, type, map);
    return map.FindIndex(shape);
  }

private:
  const std::vector<NamedPart>& parts;
  TopAbs_ShapeEnum type;
  std::vector<TopTools_IndexedMapOfShape> maps;
};

QJsonObject HitJson(const PickResult& hit, const NamedPart& part, int number, const gp_Lin& ray)
{
  QJsonObject json{{"part", part.name},
                   {"path", part.path},
                   {"number", number},
                   {"point", ToJson(hit.point.XYZ())},
                   {"distance", ray.Location().Distance(hit.point)},
                   {"parameter", hit.parameter}};
  if (hit.level == static_cast<int>(PickingLevel::Face) && hit.parentShape.IsNull()) {
    json.insert("u", hit.u);
    json.insert("v", hit.v);
  }
  return json;
}

std::string WithoutComment(const std::string& line)
{
  return line.substr(0, line.find('#'));
}

bool IsBlank(const std::string& text)
{
  return text.find_first_not_of(" \t\r") == std::string::npos;
}

QString PointText(const QJsonArray& point)
{
  return QStringLiteral("%1, %2, %3")
    .arg(Decimal(point[0].toDouble(), 6), Decimal(point[1].toDouble(), 6),
         Decimal(point[2].toDouble(), 6));
}

} // namespace

std::optional<gp_Lin> RayFromText(const std::string& text)
{
  static constexpr const char* kBetween = ", \t\r";
  std::array<double, 6> numbers{};
  std::size_t from = 0;
  for (double& number : numbers) {
    const std::size_t begin = text.find_first_not_of(kBetween, from);
    const bool runsOn = &number != numbers.data() && begin == from;
    if (begin == std::string::npos || runsOn)
      return std::nullopt;
    from = begin;
    const auto [end, error] =
      std::from_chars(text.data() + from, text.data() + text.size(), number);
    if (error != std::errc() || !std::isfinite(number))
      return std::nullopt;
    from = static_cast<std::size_t>(end - text.data());
  }
  const gp_XYZ direction(numbers[3], numbers[4], numbers[5]);
  if (text.find_first_not_of(kBetween, from) != std::string::npos ||
      direction.Modulus() <= gp::Resolution() || !std::isfinite(direction.SquareModulus()))
    return std::nullopt;
  return gp_Lin(gp_Pnt(numbers[0], numbers[1], numbers[2]), gp_Dir(direction));
}

std::vector<gp_Lin> RaysFromFile(const std::string& path)
{
  std::ifstream file(path);
  const QString subject = TextFromBytes(path);
  const auto requireReadable = [&](bool isReadable) {
    if (!isReadable)
      throw Failure{ExitCode::Unreadable, subject, {}, QStringLiteral("it cannot be read"), {}};
  };
  requireReadable(file.good());
  std::vector<gp_Lin> rays;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    const std::string text = WithoutComment(line);
    if (IsBlank(text))
      continue;
    const std::optional<gp_Lin> ray = RayFromText(text);
    if (!ray)
      throw Failure{ExitCode::Unreadable, subject, QStringLiteral("line %1").arg(number),
                    QStringLiteral("it is no ray"), QStringLiteral("as 0,0,10,0,0,-1")};
    rays.push_back(*ray);
  }
  // A folder opens like a file, and fails at its first line.
  requireReadable(!file.bad());
  return rays;
}

QJsonObject PickModel(const PickRequest& request, const ProgressSink& progress)
{
  const std::vector<NamedPart> parts = ReadParts({request.path}, progress);
  std::vector<TopoDS_Shape> shapes;
  for (const NamedPart& part : parts)
    shapes.push_back(part.shape);
  OCCPickingSystem picking;
  picking.SetShapesToPick(shapes);
  picking.SetPickingLevel(request.level);
  if (request.tolerance)
    picking.SetPickingTolerance(*request.tolerance);
  Numbering numbering(parts, WordsOf(request.level).type);
  QJsonArray rays;
  for (const gp_Lin& ray : request.rays) {
    progress({QStringLiteral("pick"),
              static_cast<double>(rays.size()) / static_cast<double>(request.rays.size())});
    QJsonArray hits;
    for (const PickResult& hit : picking.PickShapes(ray))
      hits.append(
        HitJson(hit, parts[hit.shapeIndex], numbering.NumberOf(hit.subShape, hit.shapeIndex), ray));
    rays.append(QJsonObject{{"origin", ToJson(ray.Location().XYZ())},
                            {"direction", ToJson(ray.Direction().XYZ())},
                            {"hits", hits}});
  }
  return {{"file", TextFromBytes(request.path)},
          {"level", WordsOf(request.level).level},
          {"entity", WordsOf(request.level).part},
          {"parts", static_cast<int>(parts.size())},
          {"rays", rays}};
}

QString PickText(const QJsonObject& result)
{
  QString text;
  const QString entity = result["entity"].toString();
  for (const QJsonValue& ray : result["rays"].toArray()) {
    const QJsonArray hits = ray["hits"].toArray();
    text += QStringLiteral("from %1 along %2: %3\n")
              .arg(PointText(ray["origin"].toArray()), PointText(ray["direction"].toArray()),
                   hits.isEmpty() ? QStringLiteral("nothing") : QString::number(hits.size()));
    for (const QJsonValue& hit : hits)
      text += QStringLiteral("  %1  %2 %3 of %4 at %5\n")
                .arg(Number(hit["distance"].toDouble()), 12)
                .arg(entity)
                .arg(hit["number"].toInt())
                .arg(TerminalText(hit["path"].toString()), PointText(hit["point"].toArray()));
  }
  return text;
}

} // namespace Orvex::Cli
