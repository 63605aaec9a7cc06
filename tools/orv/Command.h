// Command.h: what the subcommands of orv have in common.
//
// Data goes to standard output, messages to standard error, each line of them beginning with "orv: ".
#pragma once

#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

namespace orv::tool {

/// What the process answers.
enum ExitStatus : int {
  ExitAllDone = 0,
  ExitSomeLost = 1,  ///< everything was written, but some points have no value
  ExitUsage = 2      ///< bad arguments, definitions or files; the output may end early
};

/// Ends the command with ExitUsage.  The text has neither "orv: " nor a full stop.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Writes to standard output; a failure raises UsageError.
void WriteOutput(const std::string& text);
/// Empties the buffers of standard output; a failure raises UsageError.
void FlushOutput();
/// The content of a file, of standard input for "-"; a failure raises UsageError.
std::string ReadFile(const std::string& name);
/// Writes "orv: ", the text and a line feed to standard error.
void Report(const std::string& text);
void SetQuiet(bool bQuiet);
/// Whether --quiet is given: no messages but those of failures, and no progress.
bool IsQuiet();
/// Report, unless IsQuiet.
void Note(const std::string& text);

// Each adds its subcommand, whose callback stores the exit status.
void AddConvertCommand(CLI::App& app, int& status);
void AddLatLonCommand(CLI::App& app, int& status);
void AddDefCommand(CLI::App& app, int& status);
void AddListCommand(CLI::App& app, int& status);
void AddInfoCommand(CLI::App& app, int& status);
void AddIdentifyCommand(CLI::App& app, int& status);
void AddRouteCommand(CLI::App& app, int& status);
void AddCheckCommand(CLI::App& app, int& status);
void AddClipCommand(CLI::App& app, int& status);
void AddPlotCommand(CLI::App& app, int& status);
void AddExplainCommand(CLI::App& app, int& status);
void AddGridsCommand(CLI::App& app, int& status);
void AddWarpCommand(CLI::App& app, int& status);
void AddBenchCommand(CLI::App& app, int& status);

}  // namespace orv::tool
