// The platform's AVI file interface, with its header's demands met, files of any name and its life time in a type.
#pragma once

#include <windows.h>

#include <mmsystem.h>

#include <vfw.h>
#include <wrl/client.h>

#include <filesystem>

namespace vixahost::media {

// Keeps the AVI file library running while one of these lives. A file that it opens is closed with the last reference
// to the IAVIFile and its streams, before the session ends.
//
// The interface itself opens files by 8-bit names of limited length. Here it gets its bytes through a file procedure of
// the host's own, so that a path may have any letters and any length.
class AviSession
{
public:
    AviSession();
    ~AviSession();
    AviSession(const AviSession&) = delete;
    AviSession& operator=(const AviSession&) = delete;

    // Opens an AVI clip for reading, whatever the file's ending. Several threads may open at once.
    HRESULT Open(const std::filesystem::path& file, Microsoft::WRL::ComPtr<IAVIFile>& opened) const;
};

} // namespace vixahost::media
