// Groups "loading" and "exports": what the file is, and what it shows to the system.
#include "host/base/Handles.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/validate/Subject.h"

#include <vixavideofx/ClassIds.h>

#include <tlhelp32.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <vector>

namespace vixahost::validate {

namespace {

#ifdef _WIN64
constexpr WORD machine = IMAGE_FILE_MACHINE_AMD64;
#else
constexpr WORD machine = IMAGE_FILE_MACHINE_I386;
#endif

// The file's bytes, and the headers in it, bounded by its size.
struct Image
{
    std::vector<char> bytes;
    const IMAGE_NT_HEADERS* headers = nullptr;

    template <typename Type>
    const Type* At(std::size_t offset, std::size_t count = 1) const
    {
        const bool inside = offset <= bytes.size() && count <= (bytes.size() - offset) / sizeof(Type);
        return inside ? reinterpret_cast<const Type*>(bytes.data() + offset) : nullptr;
    }
    // Where an address of the loaded module lies in the file; its end when nowhere.
    std::size_t OffsetOf(DWORD address) const
    {
        const auto first =
            static_cast<std::size_t>(reinterpret_cast<const char*>(IMAGE_FIRST_SECTION(headers)) - bytes.data());
        for (std::size_t i = 0; i < headers->FileHeader.NumberOfSections; ++i) {
            const auto* const section = At<IMAGE_SECTION_HEADER>(first + i * sizeof(IMAGE_SECTION_HEADER));
            if (section && address >= section->VirtualAddress &&
                address - section->VirtualAddress < section->SizeOfRawData)
                return static_cast<std::size_t>(std::min<std::uint64_t>(
                    bytes.size(), std::uint64_t{section->PointerToRawData} + (address - section->VirtualAddress)));
        }
        return bytes.size();
    }
    std::string Name(DWORD address) const
    {
        const std::size_t start = OffsetOf(address);
        const auto end = std::find(bytes.begin() + static_cast<std::ptrdiff_t>(start), bytes.end(), '\0');
        return {bytes.begin() + static_cast<std::ptrdiff_t>(start), end};
    }
};

Image ReadImage(Subject& library)
{
    Image image;
    std::ifstream file(library.File(), std::ios::binary);
    image.bytes.assign(std::istreambuf_iterator<char>(file), {});
    const auto* const dos = image.At<IMAGE_DOS_HEADER>(0);
    Require(dos && dos->e_magic == IMAGE_DOS_SIGNATURE && dos->e_lfanew > 0, "the file is no program or library");
    image.headers = image.At<IMAGE_NT_HEADERS>(static_cast<std::size_t>(dos->e_lfanew));
    Require(image.headers && image.headers->Signature == IMAGE_NT_SIGNATURE, "the file has no PE header");
    return image;
}

void Machine(Subject& library)
{
    const Image image = ReadImage(library);
    RequireNumber(image.headers->FileHeader.Machine, machine, "the machine type");
    Require((image.headers->FileHeader.Characteristics & IMAGE_FILE_DLL) != 0, "the file is a program, not a DLL");
}

void Protections(Subject& library)
{
    const WORD flags = ReadImage(library).headers->OptionalHeader.DllCharacteristics;
    if (!(flags & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE))
        Warn("the file can't be loaded at a random address");
    if (!(flags & IMAGE_DLLCHARACTERISTICS_NX_COMPAT))
        Warn("the file is not marked as fit for memory that can't be executed");
}

void Imports(Subject& library)
{
    const Image image = ReadImage(library);
    const DWORD table = image.headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    for (std::size_t at = image.OffsetOf(table); table != 0; at += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        const auto* const entry = image.At<IMAGE_IMPORT_DESCRIPTOR>(at);
        Require(entry != nullptr, "the file ends before its table of imports does");
        if (entry->Name == 0)
            return;
        const std::string name = image.Name(entry->Name);
        Require(!name.empty(), "the file ends before the names of its imports");
        if (GetFileAttributesW((std::filesystem::path(folder) / Wide(name)).c_str()) == INVALID_FILE_ATTRIBUTES)
            throw Finding{Status::Failed, "the library needs " + name + ", which is not part of the system"};
    }
}

void Version(Subject& library)
{
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(library.File().c_str(), &ignored);
    if (size == 0)
        Warn("the file carries no version");
}

int Threads()
{
    const auto snapshot = Opened<UniqueSnapshot>(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot.get(), &entry); more; more = Thread32Next(snapshot.get(), &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId();
    return count;
}

void Loads(Subject& library)
{
    const UniqueModule module(LoadLibraryW(library.File().c_str()));
    const DWORD error = GetLastError();
    Require(module != nullptr, "LoadLibrary fails with " + ExplainError(error));
}

void StartsNothing(Subject& library)
{
    library.Unload();
    const int before = Threads();
    library.Module();
    RequireNumber(Threads(), before, "the number of threads after loading");
}

void ExportNames(Subject& library)
{
    std::string missing;
    for (const char* name :
         {"DllMain", "DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer", "DllUnregisterServer"})
        if (!library.Export(name))
            missing += missing.empty() ? name : std::string(", ") + name;
    Require(missing.empty(), "missing: " + missing);
}

void NothingElse(Subject& library)
{
    const Image image = ReadImage(library);
    const DWORD address = image.headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress;
    const auto* const directory = image.At<IMAGE_EXPORT_DIRECTORY>(image.OffsetOf(address));
    Require(directory != nullptr, "the file has no table of exports");
    const DWORD meant = library.Export("DllInstall") ? 6 : 5;
    if (directory->NumberOfNames > meant)
        Warn("the library exports " + std::to_string(directory->NumberOfNames) + " names where " +
             std::to_string(meant) + " are meant");
}

// Calls an entry point with what it must give back on record. Answers 0 when it did.
#ifdef _WIN64
__attribute__((noinline)) bool Upset(void* function, const void* first, const void* second, void* third)
{
    register void* thirdPlace asm("r8") = third;
    UINT_PTR changed;
    __asm__ volatile("movq %%rsp, %%rbx\n\t"
                     "andq $-16, %%rsp\n\t"
                     "subq $32, %%rsp\n\t"
                     "movq %%rbx, %%rsi\n\t"
                     "movq %%rbx, %%rdi\n\t"
                     "movq %%rbx, %%r12\n\t"
                     "movq %%rbx, %%r13\n\t"
                     "movq %%rbx, %%r14\n\t"
                     "movq %%rbx, %%r15\n\t"
                     "call *%%rax\n\t"
                     "movq %%rbx, %%rsp\n\t"
                     "xorq %%rbx, %%rsi\n\t"
                     "xorq %%rbx, %%rdi\n\t"
                     "xorq %%rbx, %%r12\n\t"
                     "xorq %%rbx, %%r13\n\t"
                     "xorq %%rbx, %%r14\n\t"
                     "xorq %%rbx, %%r15\n\t"
                     "orq %%rdi, %%rsi\n\t"
                     "orq %%r12, %%rsi\n\t"
                     "orq %%r13, %%rsi\n\t"
                     "orq %%r14, %%rsi\n\t"
                     "orq %%r15, %%rsi\n\t"
                     : "=&S"(changed), "+a"(function), "+c"(first), "+d"(second), "+r"(thirdPlace)
                     :
                     : "rbx", "rdi", "r9", "r10", "r11", "r12", "r13", "r14", "r15", "xmm0", "xmm1", "xmm2", "xmm3",
                       "xmm4", "xmm5", "memory", "cc");
    return changed != 0;
}
#else
__attribute__((noinline)) bool Upset(void* function, const void* first, const void* second, void* third)
{
    int moved = 0;
    __asm__ volatile("movl %%esp, %%esi\n\t"
                     "pushl %[third]\n\t"
                     "pushl %[second]\n\t"
                     "pushl %[first]\n\t"
                     "call *%%eax\n\t"
                     "movl %%esi, %%edx\n\t"
                     "subl %%esp, %%edx\n\t"
                     "movl %%esi, %%esp\n\t"
                     : "=d"(moved), "+a"(function), [second] "+c"(second)
                     : [first] "b"(first), [third] "D"(third)
                     : "esi", "st", "st(1)", "st(2)", "st(3)", "st(4)", "st(5)", "st(6)", "st(7)", "xmm0", "xmm1",
                       "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "memory", "cc");
    return moved != 0;
}
#endif

void CallingConvention(Subject& library)
{
    void* const function = library.Export("DllGetClassObject");
    if (!function)
        Skip("DllGetClassObject is missing (see exports/names)");
    void* object = nullptr;
    Require(!Upset(function, &GUID_NULL, &GUID_NULL, &object),
            "DllGetClassObject does not give back the stack pointer, or the registers that are its caller's");
}

constexpr Check loading[] = {
    {"loading", "machine", "The file is a DLL for the program's own processor: x86, or x86-64 in 64 bit.", Machine},
    {"loading", "protections", "The file may lie at any address and runs without executable data.", Protections},
    {"loading", "imports", "The library needs nothing but the system's own libraries.", Imports},
    {"loading", "version", "The file carries a version resource.", Version},
    {"loading", "loads", "LoadLibrary takes the file.", Loads},
    {"loading", "no-threads", "Loading starts no thread.", StartsNothing},
};

constexpr Check exports[] = {
    {"exports", "names", "All five entry points are exported under their plain names.", ExportNames},
    {"exports", "nothing-else", "Nothing but the five entry points, and DllInstall, is exported.", NothingElse},
    {"exports", "calling-convention", "DllGetClassObject gives back the stack, and in 64 bit its caller's registers.",
     CallingConvention},
};

} // namespace

std::span<const Check> LoadingChecks()
{
    return loading;
}

std::span<const Check> ExportChecks()
{
    return exports;
}

} // namespace vixahost::validate
