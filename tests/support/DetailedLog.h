// Lets the debug log have its lines about single steps for as long as this lives.
#pragma once

#include "foundation/OrvexDebugLogFile.h"

namespace OrvexTest {

class DetailedLog
{
public:
  DetailedLog() : usual(OrvexDebugLogFile::GetInstance()->WantsDetail())
  {
    OrvexDebugLogFile::GetInstance()->SetWantsDetail(true);
  }
  ~DetailedLog()
  {
    OrvexDebugLogFile::GetInstance()->SetWantsDetail(usual);
  }
  DetailedLog(const DetailedLog&) = delete;
  DetailedLog& operator=(const DetailedLog&) = delete;

private:
  bool usual;
};

} // namespace OrvexTest
