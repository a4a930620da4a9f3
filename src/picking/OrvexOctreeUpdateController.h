// Tells the application when the index of shapes has fallen behind the document.
#pragma once

#include "foundation/Export.h"

class ORVEX_API OrvexOctreeUpdateController
{
public:
  // True while an update is forced, and else if the document has another number of shapes than the
  // index. Only numbers are compared: after one shape has taken another's place, force it.
  static bool NeedUpdateOctree();
  static void SetForceNeedUpdateOctree(bool isForced);

  static bool m_bNeedUpdateOctree;
};
