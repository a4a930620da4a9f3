// orvex-step-worker: reads a STEP file for the library in a process that may go down. Not for use
// by hand.
#include "step/internal/StepWorker.h"

int main(int argumentCount, char** arguments)
{
  return Orvex::RunStepWorker(argumentCount, arguments);
}
