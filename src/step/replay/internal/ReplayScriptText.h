// The fixed text of a replay script, cut where a script's own values go. The text itself is
// step/replay/script/replay_script.py; the build embeds it.
#pragma once

#include <string_view>

namespace Orvex {

struct ReplayScriptText
{
  std::string_view beforeScope;
  std::string_view beforeEntityId;
  std::string_view beforeBundle;
  std::string_view afterBundle;
};

extern const ReplayScriptText kReplayScriptText;

} // namespace Orvex
