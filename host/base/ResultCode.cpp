#include "host/base/ResultCode.h"

#include "host/base/Text.h"

#include <dshow.h>
#include <vfw.h>
#include <wincodec.h>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace vixahost {

namespace {

struct ResultWords
{
    HRESULT code;
    const char* name;
    const char* words;
};

#define RESULT(name, words)                                                                                            \
    {                                                                                                                  \
        static_cast<HRESULT>(name), #name, words                                                                       \
    }
#define SYSTEM(name, words)                                                                                            \
    {                                                                                                                  \
        HRESULT_FROM_WIN32(name), #name, words                                                                         \
    }

// The codes that libraries, graphs, codecs and the registry answer here.
constexpr ResultWords known[] = {
    RESULT(S_OK, "done"),
    RESULT(S_FALSE, "done, but not in full or not needed"),
    RESULT(E_NOTIMPL, "not implemented"),
    RESULT(E_NOINTERFACE, "the object has no such interface"),
    RESULT(E_POINTER, "a pointer is missing"),
    RESULT(E_ABORT, "ended before it was done"),
    RESULT(E_FAIL, "failed without a reason"),
    RESULT(E_UNEXPECTED, "not possible in this state"),
    RESULT(E_ACCESSDENIED, "access denied"),
    RESULT(E_HANDLE, "not a valid handle"),
    RESULT(E_OUTOFMEMORY, "out of memory"),
    RESULT(E_INVALIDARG, "an argument is not valid"),
    RESULT(REGDB_E_CLASSNOTREG, "the class is not registered"),
    RESULT(CLASS_E_NOAGGREGATION, "the class can't be part of another object"),
    RESULT(CLASS_E_CLASSNOTAVAILABLE, "the library has no such class"),
    RESULT(CO_E_NOTINITIALIZED, "COM is not running in this thread"),
    RESULT(RPC_E_CHANGED_MODE, "the thread is in another kind of apartment"),
    RESULT(RPC_E_WRONG_THREAD, "the object belongs to another thread"),
    RESULT(SELFREG_E_CLASS, "the classes could not be registered"),
    SYSTEM(ERROR_FILE_NOT_FOUND, "there is no such file"),
    SYSTEM(ERROR_PATH_NOT_FOUND, "there is no such folder"),
    SYSTEM(ERROR_SHARING_VIOLATION, "another program has the file open"),
    SYSTEM(ERROR_DISK_FULL, "the disk is full"),
    SYSTEM(ERROR_MOD_NOT_FOUND, "a library was not found"),
    SYSTEM(ERROR_BAD_EXE_FORMAT, "not a library, or one of another width"),
    RESULT(VFW_S_STATE_INTERMEDIATE, "the state is still changing"),
    RESULT(VFW_S_CANT_CUE, "the filter has no frame to show while paused"),
    RESULT(VFW_S_NO_MORE_ITEMS, "there are no more"),
    RESULT(VFW_E_INVALIDMEDIATYPE, "the media type is not valid"),
    RESULT(VFW_E_INVALIDSUBTYPE, "the media subtype is not valid"),
    RESULT(VFW_E_ALREADY_CONNECTED, "a pin is already connected"),
    RESULT(VFW_E_FILTER_ACTIVE, "the filter is active"),
    RESULT(VFW_E_NO_TYPES, "a pin offers no media type"),
    RESULT(VFW_E_NO_ACCEPTABLE_TYPES, "the pins have no media type in common"),
    RESULT(VFW_E_INVALID_DIRECTION, "both pins have the same direction"),
    RESULT(VFW_E_NOT_CONNECTED, "the pins are not connected"),
    RESULT(VFW_E_NO_ALLOCATOR, "there is no allocator for the frames"),
    RESULT(VFW_E_RUNTIME_ERROR, "an error came before, until a stop"),
    RESULT(VFW_E_BUFFER_NOTSET, "no buffers were asked for"),
    RESULT(VFW_E_BUFFER_OVERFLOW, "the buffer is too small"),
    RESULT(VFW_E_BADALIGN, "the buffers' alignment is not valid"),
    RESULT(VFW_E_ALREADY_COMMITTED, "the buffers are already there"),
    RESULT(VFW_E_BUFFERS_OUTSTANDING, "frames are still in use"),
    RESULT(VFW_E_NOT_COMMITTED, "there are no buffers: the filter is stopped"),
    RESULT(VFW_E_SIZENOTSET, "the buffers' size was not set"),
    RESULT(VFW_E_NO_CLOCK, "the graph has no clock"),
    RESULT(VFW_E_NO_SINK, "no filter takes the events"),
    RESULT(VFW_E_NO_INTERFACE, "the object lacks an interface that is needed"),
    RESULT(VFW_E_NOT_FOUND, "not found"),
    RESULT(VFW_E_CANNOT_CONNECT, "no filters were found that connect the pins"),
    RESULT(VFW_E_CANNOT_RENDER, "no filters were found that show the stream"),
    RESULT(VFW_E_CHANGING_FORMAT, "the format can't change now"),
    RESULT(VFW_E_NOT_STOPPED, "the filter is not stopped"),
    RESULT(VFW_E_NOT_PAUSED, "the filter is not paused"),
    RESULT(VFW_E_NOT_RUNNING, "the filter does not run"),
    RESULT(VFW_E_WRONG_STATE, "not possible in the filter's state"),
    RESULT(VFW_E_START_TIME_AFTER_END, "the frame ends before it starts"),
    RESULT(VFW_E_INVALID_RECT, "the rectangle is not valid"),
    RESULT(VFW_E_TYPE_NOT_ACCEPTED, "the media type is not accepted"),
    RESULT(VFW_E_SAMPLE_REJECTED, "the frame was refused"),
    RESULT(VFW_E_SAMPLE_TIME_NOT_SET, "the frame has no time"),
    RESULT(VFW_E_MEDIA_TIME_NOT_SET, "the frame has no media time"),
    RESULT(VFW_E_DUPLICATE_NAME, "the graph has a filter of that name"),
    RESULT(VFW_E_TIMEOUT, "it took too long"),
    RESULT(VFW_E_INVALID_FILE_FORMAT, "the file's format is not valid"),
    RESULT(VFW_E_ENUM_OUT_OF_SYNC, "the list changed while it was read"),
    RESULT(VFW_E_CIRCULAR_GRAPH, "the graph would be a ring"),
    RESULT(VFW_E_UNSUPPORTED_STREAM, "the stream's format is not supported"),
    RESULT(VFW_E_NO_DECOMPRESSOR, "there is no decoder for the stream"),
    RESULT(VFW_E_NOT_IN_GRAPH, "the filter is in no graph"),
    RESULT(WINCODEC_ERR_WRONGSTATE, "the codec can't do that now"),
    RESULT(WINCODEC_ERR_UNKNOWNIMAGEFORMAT, "no known picture format"),
    RESULT(WINCODEC_ERR_COMPONENTNOTFOUND, "no codec reads this"),
    RESULT(WINCODEC_ERR_IMAGESIZEOUTOFRANGE, "the picture is too large for the codec"),
    RESULT(WINCODEC_ERR_BADIMAGE, "the picture is damaged"),
    RESULT(WINCODEC_ERR_BADHEADER, "the picture's header is damaged"),
    RESULT(WINCODEC_ERR_FRAMEMISSING, "the file holds no picture"),
    RESULT(WINCODEC_ERR_BADSTREAMDATA, "the picture's data are damaged"),
    RESULT(WINCODEC_ERR_STREAMREAD, "the file can't be read to its end"),
    RESULT(WINCODEC_ERR_STREAMWRITE, "the file can't be written"),
    RESULT(WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT, "the codec has not this kind of pixels"),
    RESULT(WINCODEC_ERR_UNSUPPORTEDOPERATION, "the codec can't do that"),
    RESULT(AVIERR_UNSUPPORTED, "not supported for this clip"),
    RESULT(AVIERR_BADFORMAT, "the clip is damaged or of an unknown kind"),
    RESULT(AVIERR_MEMORY, "not enough memory for the clip"),
    RESULT(AVIERR_NODATA, "the clip has no such data"),
    RESULT(AVIERR_FILEREAD, "the clip can't be read"),
    RESULT(AVIERR_FILEWRITE, "the clip can't be written"),
    RESULT(AVIERR_FILEOPEN, "the clip can't be opened"),
    RESULT(AVIERR_NOCOMPRESSOR, "there is no decoder for the clip"),
};

#undef RESULT
#undef SYSTEM

const ResultWords* WordsOf(HRESULT result)
{
    const auto* const row = std::ranges::find(known, result, &ResultWords::code);
    return row == std::end(known) ? nullptr : row;
}

struct LocalText
{
    void operator()(wchar_t* text) const { LocalFree(text); }
};

// The system's sentence, on one line and without its full stop; empty when it has none. In English like all messages,
// where the system has it.
std::string SystemWords(HRESULT result)
{
    wchar_t* words = nullptr;
    DWORD length = 0;
    for (const DWORD language : {DWORD{MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US)}, DWORD{0}})
        if (length == 0)
            length = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                        FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                    nullptr, static_cast<DWORD>(result), language, reinterpret_cast<wchar_t*>(&words),
                                    0, nullptr);
    const std::unique_ptr<wchar_t, LocalText> owner(words);
    std::wstring text(words ? words : L"", length);
    while (!text.empty() && (text.back() <= L' ' || text.back() == L'.'))
        text.pop_back();
    return Utf8(text);
}

std::string WordsFor(HRESULT result)
{
    const ResultWords* const row = WordsOf(result);
    return row ? row->words : SystemWords(result);
}

} // namespace

std::string Show(HRESULT result)
{
    const std::string number = ShowHex(static_cast<DWORD>(result));
    const ResultWords* const row = WordsOf(result);
    return row ? std::string(row->name) + " (" + number + ")" : number;
}

std::string Explain(HRESULT result)
{
    const std::string words = WordsFor(result);
    return words.empty() ? Show(result) : Show(result) + ": " + words;
}

std::string ExplainError(DWORD error)
{
    const std::string number = "system error " + std::to_string(error);
    const std::string words = WordsFor(HRESULT_FROM_WIN32(error));
    return words.empty() ? number : number + ": " + words;
}

std::string ShowHex(DWORD number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08lX", number);
    return text;
}

} // namespace vixahost
