#include "picking/OrvexFaceTriangulationPicker.h"

#include "foundation/OrvexDebugLogFile.h"
#include "foundation/OrvexPTimer.h"

#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr int kLargestHash = 0x7fffffff;
constexpr int kFaceLevel = 2;

// The two lines that a pick leaves in the debug log.
class PickLog
{
public:
  PickLog(const OrvexKDTree& tree, const gp_Pnt& origin, const gp_Dir& direction)
      : isWanted(OrvexDebugLogFile::GetInstance()->WantsDetail())
  {
    if (!isWanted)
      return;
    std::string line = "Start Pick(candidate trianglues number): ";
    line += std::to_string(tree.CountCandidates(origin, direction));
    OrvexDebugLogFile::GetInstance()->dumpToFile(std::move(line));
    timer.start();
  }

  void Finish()
  {
    if (!isWanted)
      return;
    timer.stop();
    std::string line = "Picking time is (seconds): ";
    line += timer.elapsedTimeAsString();
    OrvexDebugLogFile::GetInstance()->dumpToFile(std::move(line));
  }

private:
  bool isWanted;
  OrvexPTimer timer;
};

} // namespace

bool OrvexFaceTriangulationPicker::ByHash::operator()(const TopoDS_Shape& a,
                                                      const TopoDS_Shape& b) const
{
  return a.HashCode(kLargestHash) < b.HashCode(kLargestHash);
}

OrvexFaceTriangulationPicker* OrvexFaceTriangulationPicker::GetInstance()
{
  static OrvexFaceTriangulationPicker m_ins;
  return &m_ins;
}

OrvexFaceTriangulationPicker::~OrvexFaceTriangulationPicker()
{
  Clear();
}

void OrvexFaceTriangulationPicker::Initialize(const std::vector<TopoDS_Shape>& shapes)
{
  for (const TopoDS_Shape& shape : shapes)
    Initialize(shape);
}

void OrvexFaceTriangulationPicker::Initialize(const TopoDS_Shape& shape)
{
  DataOf(shape);
}

const OrvexPickShapeData& OrvexFaceTriangulationPicker::DataOf(const TopoDS_Shape& shape)
{
  if (const auto known = entries.find(shape); known != entries.end())
    return *known->second;
  auto data = std::make_unique<OrvexPickShapeData>(shape);
  data->Initialize();
  return *entries.emplace(shape, std::move(data)).first->second;
}

PickResultsOutput OrvexFaceTriangulationPicker::Pick(TopoDS_Shape& shape, const gp_Pnt& origin,
                                                     const gp_Dir& direction)
{
  PickResultsOutput result;
  result.parameter = std::numeric_limits<double>::max();
  const OrvexKDTree& tree = *DataOf(shape).GetKDTree();
  PickLog log(tree, origin, direction);
  const std::optional<OrvexKDTree::Hit> hit = tree.NearestHit(origin, direction);
  log.Finish();
  if (!hit)
    return result;
  result.hit = true;
  result.point = hit->point;
  result.parameter = hit->distance;
  result.level = kFaceLevel;
  result.subShape = result.face = *hit->face;
  result.parentShape = shape;
  return result;
}

void OrvexFaceTriangulationPicker::Clear()
{
  entries.clear();
}
