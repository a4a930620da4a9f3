#include "foundation/MessageLog.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <cstdio>

int main()
{
  ParametersDef wall;
  wall.type = eREAL_PARAMETER;
  wall.valueText = "2.5";
  GlobalParaMeterMgr::AddParameter("wall", wall);

  ParametersDef outer;
  outer.type = eREAL_PARAMETER;
  outer.expression = "40+2*wall";
  outer.expressionParameters = "wall";
  GlobalParaMeterMgr::AddParameter("outer", outer);

  std::printf("outer = %g\n", GlobalParaMeterMgr::GetParameterRawValue("outer").toDouble());
  MessageLog(Orvex::kLogInformation, "nothing of this is shown");
  return 0;
}
