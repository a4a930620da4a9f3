#include "picking/OrvexOctreeUpdateController.h"

#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "picking/OrvexShapeOctreeManager.h"

bool OrvexOctreeUpdateController::m_bNeedUpdateOctree = false;

bool OrvexOctreeUpdateController::NeedUpdateOctree()
{
  if (m_bNeedUpdateOctree)
    return true;
  // Holds the document for as long as its shapes are counted.
  const opencascade::handle<TDocStd_Document> document = ShapeDocMgr::GetInstance()->GetDoc();
  return ShapeLabelMgr::GetAllShapesPtr().size() !=
         OrvexShapeOctreeManager::GetInstance().GetAllShapes().size();
}

void OrvexOctreeUpdateController::SetForceNeedUpdateOctree(bool isForced)
{
  m_bNeedUpdateOctree = isForced;
}
