// The subcommands: each adds itself to the command line and says what to run.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "tools/nls/failure.hpp"

namespace nls::tool {

// Options that every subcommand understands.
struct Common {
    std::string dataFile;
    bool json = false;
};

// What to run once the command line has been read.
using Run = std::function<Exit()>;

void addConvert(CLI::App& app, const Common& common, Run& run);
void addCheck(CLI::App& app, const Common& common, Run& run);
void addCount(CLI::App& app, const Common& common, Run& run);
void addFind(CLI::App& app, const Common& common, Run& run);
void addLike(CLI::App& app, const Common& common, Run& run);
void addCut(CLI::App& app, const Common& common, Run& run);
void addSort(CLI::App& app, const Common& common, Run& run);
void addCompare(CLI::App& app, const Common& common, Run& run);
void addKey(CLI::App& app, const Common& common, Run& run);
void addUpper(CLI::App& app, const Common& common, Run& run);
void addLower(CLI::App& app, const Common& common, Run& run);
void addFingerprint(CLI::App& app, const Common& common, Run& run);
void addList(CLI::App& app, const Common& common, Run& run);
void addShow(CLI::App& app, const Common& common, Run& run);
void addDoctor(CLI::App& app, const Common& common, Run& run);
void addDump(CLI::App& app, const Common& common, Run& run);

// The list of charsets, which `convert -l` shows as well.
Exit listCharsets(const Common& common);

// Writes text to the standard output. Throws if it can't be written.
void print(const std::string& text);
// The same with what is still waiting; at the end of a command.
void flushOutput();

}  // namespace nls::tool
