#include "host/commands/Manifest.h"
#include "host/base/Text.h"
#include "host/commands/HandOver.h"
#include "host/commands/Words.h"
#include "host/effects/EffectCatalogue.h"
#include "host/effects/LibraryFile.h"

namespace vixahost::commands {

namespace {

std::string InXml(const std::string& text)
{
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += letter;
        }
    }
    return escaped;
}

} // namespace

void Run(const ManifestCommand& command)
{
    const auto dll = effects::LibraryOr(command.dll);
    if (HandOver(dll))
        return;
    const effects::EffectLibrary library(dll);
    const std::string version = effects::VersionOf(library.File());
    // The assembly's name is not the file's: the system would look for the manifest inside VixaVideoFX.dll first.
    std::string text = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="VixaVideoFX.Effects" version=")" +
                       (version.empty() ? "0.0.0" : version) + R"(.0" processorArchitecture=")" +
                       (effects::ownWidth == 64 ? "amd64" : "x86") + R"("/>
  <file name=")" + InXml(Show(library.File().filename())) +
                       "\">\n";
    for (const effects::CatalogueEntry& effect : effects::ReadCatalogue(library)) {
        wchar_t identifier[40] = {};
        StringFromGUID2(effect.classId, identifier, 40);
        text += "    <comClass clsid=\"" + Utf8(identifier) + "\" description=\"" + InXml(effect.englishName) +
                "\" threadingModel=\"Both\"/>\n";
    }
    Say(text + "  </file>\n</assembly>\n");
}

Words ManifestWords(CLI::App& program)
{
    const auto library = std::make_shared<std::string>();
    CLI::App* const parser = program.add_subcommand(
        "manifest", "Writes the manifest for programs that use the library without registering it");
    parser->add_option("--dll", *library, "The library; without it the one beside this program");
    return {parser, [library] { return ManifestCommand{Wide(*library)}; }};
}

} // namespace vixahost::commands
