// How a command's words are declared on the parser and read from it. For the commands' own sources only.
#pragma once

#include "host/base/Verbose.h"
#include "host/commands/CommandLine.h"

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#endif
#include <CLI/CLI.hpp>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#include <functional>
#include <memory>

namespace vixahost::commands {

// One command on the parser, and what reads its words after they were parsed. The reader throws WrongWords; no reader
// asks the library anything.
struct Words
{
    CLI::App* parser;
    std::function<Command()> read;
};

// --verbose of a command that builds filter graphs.
inline void AddVerbose(CLI::App& parser)
{
    parser.add_flag_callback(
        "--verbose", [] { verbose = true; },
        "Tells on standard error what each filter graph is made of: filters, pins, types, allocators, instruction "
        "sets");
}

// One a command, in the order of the help.
Words EffectsWords(CLI::App& program);
Words ApplyWords(CLI::App& program);
Words BrowseWords(CLI::App& program);
Words ListWords(CLI::App& program);
Words IconWords(CLI::App& program);
Words PanelWords(CLI::App& program);
Words ManifestWords(CLI::App& program);
Words ValidateWords(CLI::App& program);

// What the help shows of how it goes.
inline constexpr const char* examples = "Examples:\n"
                                        "  vixahost apply \"Emboss\" in.png out.png\n"
                                        "  vixahost apply \"Gamma correction\" --set gamma=160 clip.avi out.avi\n"
                                        "  vixahost apply \"Soften filter\" --then \"Enhance edges\" in.png out.png\n"
                                        "  vixahost apply --stack looks.txt in.png out.png\n"
                                        "  vixahost apply \"Emboss\" in%04d.png out%04d.png\n"
                                        "  vixahost browse in.png\n"
                                        "  vixahost list --language de\n"
                                        "  vixahost icon \"Emboss\" icon.png\n"
                                        "  vixahost panel \"Add pixel\" panel.png --set red=50\n"
                                        "  vixahost validate VixaVideoFX.dll\n";

} // namespace vixahost::commands
