#include "collide/CollisionReport.h"
#include "collide/ReportParts.h"
#include "collision/OrvexMeshRoiBoolean.h"
#include "frame/Failure.h"
#include "frame/Text.h"

namespace Orvex::Cli {

namespace {

QJsonValue BoxOf(const Bnd_Box& box)
{
  if (box.IsVoid())
    return {};
  return QJsonObject{{"min", PointJson(box.CornerMin())}, {"max", PointJson(box.CornerMax())}};
}

double Total(const OrvexMeshRoiTrace& trace)
{
  return trace.reductionSeconds + trace.meshSeconds + trace.regionSeconds + trace.clipSecondsA +
         trace.clipSecondsB + trace.commonSeconds;
}

} // namespace

QJsonObject CommonInRegion(const RegionRequest& request, const std::string& overlapFile,
                           const std::string& overlapName, const ProgressSink& progress)
{
  const TopoDS_Shape first = ReadWhole(request.first, progress);
  const TopoDS_Shape second = ReadWhole(request.second, progress);
  progress({QStringLiteral("common"), -1.0});
  OrvexMeshRoiTrace trace;
  const OrvexMeshRoiResult result =
    OrvexMeshRoiBoolean::compute(first, second, {}, request.tolerance.value_or(0.0), trace);
  if (!result.message.empty())
    throw Failure{ExitCode::KernelFailure,
                  TextFromBytes(request.first),
                  TextFromBytes(request.second),
                  TextFromBytes(result.message),
                  {}};
  if (!overlapFile.empty())
    WriteShapes(result.noOverlap ? std::vector<TopoDS_Shape>() : std::vector{result.shape},
                overlapFile, overlapName);
  return {{"files", FilesJson({request.first, request.second})},
          {"overlap", !result.noOverlap},
          {"volume", result.volume},
          {"area", result.area},
          {"usedFallback", result.usedFallback},
          {"widened", trace.wasWidened},
          {"region", BoxOf(trace.clipRegion)},
          {"seconds", Total(trace)}};
}

QString RegionText(const QJsonObject& report)
{
  if (!report.value("overlap").toBool())
    return QStringLiteral("no overlap (%1 s)\n").arg(Decimal(report.value("seconds").toDouble()));
  return QStringLiteral("overlap  volume %1, area %2 (%3 s)\n")
    .arg(Number(report.value("volume").toDouble()), Number(report.value("area").toDouble()),
         Decimal(report.value("seconds").toDouble()));
}

} // namespace Orvex::Cli
