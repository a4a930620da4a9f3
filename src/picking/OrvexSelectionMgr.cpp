#include "picking/OrvexSelectionMgr.h"

#include <algorithm>
#include <utility>

namespace {

bool HasTShapeOf(const TopoDS_Shape& shape, const TopoDS_Shape& other)
{
  return shape.TShape() == other.TShape();
}

auto Find(std::vector<TopoDS_Shape>& list, const TopoDS_Shape& shape)
{
  return std::find_if(list.begin(), list.end(),
                      [&](const TopoDS_Shape& entry) { return HasTShapeOf(entry, shape); });
}

bool Holds(const std::vector<const TopoDS_Shape*>& list, const TopoDS_Shape& shape)
{
  return std::any_of(list.begin(), list.end(),
                     [&](const TopoDS_Shape* entry) { return HasTShapeOf(*entry, shape); });
}

} // namespace

OrvexSelectionMgr* OrvexSelectionMgr::m_SelectInstace = nullptr;

OrvexSelectionMgr* OrvexSelectionMgr::GetInstance()
{
  if (m_SelectInstace == nullptr)
    m_SelectInstace = new OrvexSelectionMgr;
  return m_SelectInstace;
}

void OrvexSelectionMgr::AddToSelectionList(const TopoDS_Shape* shape)
{
  if (!Holds(pointerList, *shape))
    pointerList.push_back(shape);
}

void OrvexSelectionMgr::AddToSelectionList(TopoDS_Shape shape)
{
  if (!Holds(pointerList, shape))
    valueList.push_back(std::move(shape));
}

void OrvexSelectionMgr::AddShapesToSelectionList(std::vector<TopoDS_Shape> shapes)
{
  for (TopoDS_Shape& shape : shapes)
    AddToSelectionList(std::move(shape));
}

void OrvexSelectionMgr::RemoveFromeSelectionList(TopoDS_Shape shape)
{
  if (const auto found = Find(valueList, shape); found != valueList.end())
    valueList.erase(found);
}

void OrvexSelectionMgr::ClearSelList()
{
  pointerList.clear();
  valueList.clear();
}

std::vector<TopoDS_Shape>& OrvexSelectionMgr::GetshapeListNoptr()
{
  return valueList;
}

void OrvexSelectionMgr::AddToBackupSelectionList(TopoDS_Shape shape)
{
  if (Find(backupList, shape) == backupList.end())
    backupList.push_back(std::move(shape));
}

void OrvexSelectionMgr::SetBackupList(const std::vector<TopoDS_Shape>& list)
{
  backupList = list;
}

std::vector<TopoDS_Shape>& OrvexSelectionMgr::GetBackupshapeList()
{
  return backupList;
}

void OrvexSelectionMgr::ClearBackupSelList()
{
  backupList.clear();
}
