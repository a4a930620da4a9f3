#include "collide/CollisionReport.h"
#include "collide/ReportParts.h"
#include "collision/InterferenceChecker.h"
#include "frame/Text.h"

namespace Orvex::Cli {

QJsonObject Interfere(const InterferenceRequest& request, const ProgressSink& progress)
{
  const std::vector<NamedPart> parts = ReadParts(request.files, progress);
  std::vector<TopoDS_Shape> shapes;
  for (const NamedPart& part : parts)
    shapes.push_back(part.shape);
  const InterferenceChecker::MeshOptions filter{request.linear.has_value(),
                                                request.linear.value_or(0.0), request.angular};
  const auto found = InterferenceChecker::FindInterferencesMeshFiltered(
    shapes, request.tolerance, filter, [&progress](std::size_t, std::size_t) {
      progress({QStringLiteral("pairs"), -1.0});
      return true;
    });
  QJsonArray pairs;
  for (const auto& [i, j] : found)
    pairs.append(QJsonObject{{"a", PartJson(parts[i])}, {"b", PartJson(parts[j])}});
  return {{"files", FilesJson(request.files)},
          {"parts", qint64(parts.size())},
          {"tolerance", request.tolerance},
          {"pairs", pairs}};
}

QString InterferenceText(const QJsonObject& report)
{
  QString text;
  const QJsonArray pairs = report.value("pairs").toArray();
  for (const QJsonValue& pair : pairs)
    text += QStringLiteral("%1 — %2\n")
              .arg(TerminalText(pair["a"]["path"].toString()),
                   TerminalText(pair["b"]["path"].toString()));
  return text + QStringLiteral("%1: %2\n")
                  .arg(Counted(report.value("parts").toInt(), "part"),
                       Counted(pairs.size(), "interfering pair"));
}

} // namespace Orvex::Cli
