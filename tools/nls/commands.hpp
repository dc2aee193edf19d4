// The subcommands: each adds itself to the command line and says what to run.
#pragma once

#include <memory>
#include <string>

#include "tools/nls/command_line.hpp"

namespace nls::tool {

// Options that every subcommand understands.
struct Common {
    std::string dataFile;
    bool json = false;
};

void addConvert(const Command& program, const Common& common);
void addCheck(const Command& program, const Common& common);
void addCount(const Command& program, const Common& common);
void addFind(const Command& program, const Common& common);
void addLike(const Command& program, const Common& common);
void addCut(const Command& program, const Common& common);
void addSort(const Command& program, const Common& common);
void addCompare(const Command& program, const Common& common);
void addKey(const Command& program, const Common& common);
void addUpper(const Command& program, const Common& common);
void addLower(const Command& program, const Common& common);
void addFingerprint(const Command& program, const Common& common);
void addList(const Command& program, const Common& common);
void addShow(const Command& program, const Common& common);
void addDoctor(const Command& program, const Common& common);
void addDb(const Command& program, const Common& common);
void addWords(const Command& program, const Common& common);
void addDump(const Command& program, const Common& common);

// The list of charsets, which `convert -l` shows as well.
Exit listCharsets(const Common& common);

// Writes text to the standard output. Throws if it can't be written.
void print(const std::string& text);
// The same with what is still waiting; at the end of a command.
void flushOutput();

}  // namespace nls::tool
