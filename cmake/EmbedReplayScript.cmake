# Turns the replay script into a C++ source. Run with -DSCRIPT=... -DOUTPUT=... -P.
#
# The script is a program of its own, with values of its own on three lines. It is cut there: what
# stands between the cuts is embedded, and the exporter writes its values into the gaps. A script
# without exactly these three lines, in this order, is refused here rather than filled wrongly.
file(READ "${SCRIPT}" REST)

# The first piece of REST, up to the value of the constant; REST loses it and the value.
macro(cut_at_value constant value piece)
  set(line "\n${constant} = ${value}\n")
  string(FIND "${REST}" "${line}" first)
  string(FIND "${REST}" "${line}" last REVERSE)
  if(first EQUAL -1 OR NOT first EQUAL last)
    message(FATAL_ERROR "${SCRIPT}: expected one line '${constant} = ${value}' here")
  endif()
  string(LENGTH "\n${constant} = " before_value)
  string(LENGTH "\n${constant} = ${value}" after_value)
  math(EXPR before_value "${first} + ${before_value}")
  math(EXPR after_value "${first} + ${after_value}")
  string(SUBSTRING "${REST}" 0 ${before_value} ${piece})
  string(SUBSTRING "${REST}" ${after_value} -1 REST)
endmacro()

cut_at_value(REPLAY_SCOPE "'manifest'" HEAD)
cut_at_value(REPLAY_ENTITY_ID 0 AFTER_SCOPE)
cut_at_value(REPLAY_BUNDLE_JSON "'{}'" AFTER_ENTITY_ID)

set(OPEN "R\"replay(")
set(CLOSE ")replay\"")
foreach(piece HEAD AFTER_SCOPE AFTER_ENTITY_ID REST)
  string(FIND "${${piece}}" "${CLOSE}" clash)
  if(NOT clash EQUAL -1)
    message(FATAL_ERROR "${SCRIPT}: holds ${CLOSE}, which ends the literal that embeds it")
  endif()
endforeach()

file(WRITE "${OUTPUT}" "// Generated from the replay script; see there.
#include \"step/replay/internal/ReplayScriptText.h\"

namespace Orvex {

constinit const ReplayScriptText kReplayScriptText = {
  ${OPEN}${HEAD}${CLOSE},
  ${OPEN}${AFTER_SCOPE}${CLOSE},
  ${OPEN}${AFTER_ENTITY_ID}${CLOSE},
  ${OPEN}${REST}${CLOSE}};

} // namespace Orvex
")
