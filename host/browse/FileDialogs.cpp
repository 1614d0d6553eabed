#include "host/browse/FileDialogs.h"

#include "host/base/HostError.h"

#include <commdlg.h>

#include <array>

namespace vixahost::browse {

namespace {

// Filters as the dialog takes them: pairs of a label and patterns, each ended by a zero.
struct Question
{
    const wchar_t* title;
    const wchar_t* filter;
    const wchar_t* ending; // for a name without one
    bool saves;
};

Question QuestionOf(FilePurpose purpose)
{
    switch (purpose) {
    case FilePurpose::OpenMedium:
        return {L"Open picture or clip",
                L"Pictures and clips\0*.png;*.bmp;*.dib;*.jpg;*.jpeg;*.tif;*.tiff;*.avi\0All files\0*.*\0", nullptr,
                false};
    case FilePurpose::SavePicture:
        return {L"Save with effects as", L"PNG\0*.png\0BMP\0*.bmp\0JPEG\0*.jpg\0TIFF\0*.tif\0", L"png", true};
    case FilePurpose::SaveClip:
        return {L"Save with effects as", L"AVI\0*.avi\0", L"avi", true};
    case FilePurpose::OpenStack:
        return {L"Load stack", L"Stacks\0*.txt\0All files\0*.*\0", nullptr, false};
    default:
        return {L"Save stack as", L"Stacks\0*.txt\0", L"txt", true};
    }
}

} // namespace

std::optional<std::filesystem::path> AskForFile(HWND owner, FilePurpose purpose)
{
    const Question question = QuestionOf(purpose);
    std::array<wchar_t, 32768> name = {};
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = question.filter;
    dialog.lpstrFile = name.data();
    dialog.nMaxFile = static_cast<DWORD>(name.size());
    dialog.lpstrTitle = question.title;
    dialog.lpstrDefExt = question.ending;
    dialog.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                   (question.saves ? OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST : OFN_FILEMUSTEXIST);
    if (question.saves ? GetSaveFileNameW(&dialog) : GetOpenFileNameW(&dialog))
        return name.data();
    if (const DWORD fault = CommDlgExtendedError())
        throw FailedJob("The system's file dialog can't be opened (error " + std::to_string(fault) + ").");
    return std::nullopt;
}

} // namespace vixahost::browse
