#include "host/browse/FileDialogs.h"

#include "host/base/HostError.h"
#include "host/media/PictureSequence.h"

#include <commdlg.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <string>
#include <vector>

namespace vixahost::browse {

namespace {

constexpr const wchar_t* mediumPatterns =
    L"*.png;*.bmp;*.dib;*.jpg;*.jpeg;*.tif;*.tiff;*.avi;*.y4m;*.mkv;*.webm;*.mov;*.mp4;*.ogv;*.mpg";

struct Form
{
    UINT title;
    const wchar_t* ending; // for a name without one
    bool saves;
    // Labels and patterns in turn.
    std::vector<std::wstring> filters;
};

Form FormOf(FilePurpose purpose, const Texts& texts)
{
    switch (purpose) {
    case FilePurpose::OpenMedium:
        return {IDT_OPEN, nullptr, false, {texts(IDT_ALL_MEDIA), mediumPatterns, texts(IDT_ALL_FILES), L"*.*"}};
    case FilePurpose::SavePicture:
        return {IDT_SAVE, L"png", true, {L"PNG", L"*.png", L"BMP", L"*.bmp", L"JPEG", L"*.jpg", L"TIFF", L"*.tif"}};
    case FilePurpose::SaveClip:
        return {IDT_SAVE, L"avi", true, {L"AVI", L"*.avi", L"y4m", L"*.y4m"}};
    case FilePurpose::OpenStack:
        return {IDT_LOAD_STACK, nullptr, false, {texts(IDT_STACKS), L"*.txt", texts(IDT_ALL_FILES), L"*.*"}};
    case FilePurpose::SavePreset:
        return {IDT_SAVE_PRESET, L"txt", true, {texts(IDT_STACKS), L"*.txt"}};
    default:
        return {IDT_SAVE_STACK, L"txt", true, {texts(IDT_STACKS), L"*.txt"}};
    }
}

// What the dialog leaves: a name, or a folder and names in it, each ended by a zero, and a zero more behind the last.
std::vector<std::filesystem::path> Chosen(const wchar_t* names)
{
    const std::filesystem::path first = names;
    std::vector<std::filesystem::path> files;
    for (names += first.native().size() + 1; *names; names += std::wcslen(names) + 1)
        files.push_back(first / names);
    if (files.empty())
        files.push_back(first);
    return files;
}

} // namespace

std::filesystem::path OneOf(const std::vector<std::filesystem::path>& files)
{
    if (files.size() == 1)
        return files.front();
    return media::SequenceName::Around(files.front()).value_or(files.front());
}

std::optional<std::filesystem::path> AskForFile(HWND owner, const Texts& texts, FilePurpose purpose,
                                                const std::filesystem::path& suggestion)
{
    const Form form = FormOf(purpose, texts);
    // As the dialog takes them: each ended by a zero, and a zero more behind the last.
    std::wstring filters;
    for (const std::wstring& word : form.filters)
        filters.append(word.c_str(), word.size() + 1);
    std::wstring title = texts(form.title);
    title.resize(std::min(title.find(L"..."), title.size()));
    std::array<wchar_t, 32768> name = {};
    const std::wstring folder = suggestion.parent_path().native();
    suggestion.filename().native().copy(name.data(), name.size() - 1);
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filters.c_str();
    dialog.lpstrFile = name.data();
    dialog.nMaxFile = static_cast<DWORD>(name.size());
    dialog.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    dialog.lpstrTitle = title.c_str();
    dialog.lpstrDefExt = form.ending;
    dialog.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                   (form.saves ? OFN_PATHMUSTEXIST | OFN_NOREADONLYRETURN : OFN_FILEMUSTEXIST);
    if (purpose == FilePurpose::OpenMedium)
        dialog.Flags |= OFN_ALLOWMULTISELECT;
    if (form.saves ? GetSaveFileNameW(&dialog) : GetOpenFileNameW(&dialog))
        return OneOf(Chosen(name.data()));
    if (const DWORD fault = CommDlgExtendedError())
        throw FailedJob("The system's file dialog can't be opened (error " + std::to_string(fault) + ").");
    return std::nullopt;
}

} // namespace vixahost::browse
