// The subcommands of orl. Each function below adds one subcommand to the program.
#pragma once

#include <CLI/CLI.hpp>

namespace orl {

/// orl info [PATH]: shows version, platform, drive table and the volume of a path.
void AddInfo(CLI::App& ioProgram);

/// orl stream FILE...: reads files unbuffered, with many reads in flight, and shows rates, latencies and checksums.
void AddStream(CLI::App& ioProgram);

/// orl ingest SOURCE DEST...: copies a tree, reads each file back unbuffered, compares, and keeps a manifest.
void AddIngest(CLI::App& ioProgram);

/// orl make-clip PATH: writes a test clip.
void AddMakeClip(CLI::App& ioProgram);

/// orl reg list|get|set|unset|delete|export|import|check: the settings in the registry.
void AddReg(CLI::App& ioProgram);

/// orl tc show|parse|add|convert|table: converts labels, counts and times of every timecode format.
void AddTimecode(CLI::App& ioProgram);

/// orl colour COLOUR: a colour in every colour model that the library supports.
void AddColour(CLI::App& ioProgram);

/// orl hash FILE...: the library's 96-bit hash of each file, as three words.
void AddHash(CLI::App& ioProgram);

/// orl res list|string|extract|picture|check: reads the resources of a module or a compiled resource file.
void AddResources(CLI::App& ioProgram);

} // namespace orl
