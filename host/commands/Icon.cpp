#include "host/commands/Icon.h"
#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/commands/Words.h"
#include "host/effects/EffectCatalogue.h"
#include "host/media/PictureFile.h"

#include <cstring>

namespace vixahost::commands {

namespace {

// An icon as the catalogue hands it out: a packed DIB, bottom-up, 24 bits, rows padded to 4 bytes.
media::Picture ToPicture(const effects::CatalogueEntry& entry)
{
    const auto& dib = entry.icon;
    BITMAPINFOHEADER header = {};
    if (dib.size() >= sizeof header)
        std::memcpy(&header, dib.data(), sizeof header);
    const bool sane = header.biSize == sizeof header && header.biWidth > 0 && header.biWidth <= 256 &&
                      header.biHeight > 0 && header.biHeight <= 256 && header.biBitCount == 24 &&
                      header.biCompression == BI_RGB;
    const std::size_t rowBytes = sane ? (static_cast<std::size_t>(header.biWidth) * 3 + 3) / 4 * 4 : 0;
    if (!sane || dib.size() < sizeof header + rowBytes * static_cast<std::size_t>(header.biHeight))
        throw FailedJob("The icon of \"" + entry.englishName + "\" is no picture that this program reads.");
    media::Picture picture(header.biWidth, header.biHeight);
    for (int y = 0; y < picture.height; ++y) {
        const std::uint8_t* from =
            dib.data() + sizeof header + rowBytes * static_cast<std::size_t>(picture.height - 1 - y);
        std::uint8_t* to = picture.Row(y);
        for (int x = 0; x < picture.width; ++x, from += 3, to += 4) {
            std::memcpy(to, from, 3);
            to[3] = 255;
        }
    }
    return picture;
}

void Save(const effects::CatalogueEntry& entry, const std::filesystem::path& file)
{
    TargetFile target(file);
    media::WritePicture(target.Temporary(), media::PictureFormat::Png, ToPicture(entry));
    target.Commit();
}

} // namespace

void Run(const IconCommand& command)
{
    const effects::EffectLibrary library;
    const auto catalogue = effects::ReadCatalogue(library);
    if (!command.effect.empty())
        return Save(effects::RequireEntry(catalogue, command.effect), command.target);
    if (!CreateDirectoryW(command.target.c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS)
        throw FailedJob("The folder " + Show(command.target) + " can't be made (" + ExplainError(GetLastError()) +
                        ").");
    for (const effects::CatalogueEntry& entry : catalogue)
        Save(entry, command.target / (effects::FileStem(entry) + ".png"));
    Say(std::to_string(catalogue.size()) + " icons are in " + Show(std::filesystem::absolute(command.target)) + ".\n");
}

Words IconWords(CLI::App& program)
{
    struct Given
    {
        std::string effect, file, folder;
    };
    CLI::App* const parser = program.add_subcommand("icon", "Writes an effect's icon as PNG");
    const auto given = std::make_shared<Given>();
    parser->add_option("EFFECT", given->effect, "The effect's English name");
    parser->add_option("FILE", given->file, "PNG file to write");
    parser->add_option("--all", given->folder, "Writes every effect's icon into this folder")->type_name("DIR");
    return {parser, [given] {
                if (!given->folder.empty() && given->effect.empty())
                    return IconCommand{"", Wide(given->folder)};
                if (!given->folder.empty() || given->effect.empty() || given->file.empty())
                    throw WrongWords("It goes: vixahost icon EFFECT FILE, or vixahost icon --all DIR.");
                return IconCommand{given->effect, Wide(given->file)};
            }};
}

} // namespace vixahost::commands
