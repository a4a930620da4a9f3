#include "commands/Commands.h"

int main(int argc, char** argv)
{
  return Orvex::Cli::RunCommandLine(argc, argv, Orvex::Cli::AllCommands());
}
