// Linked into a copy of the library, this breaks one thing in it when it is loaded: the fault that the environment
// variable VIXA_FAULT names by the check that is meant for it; without one the copy is as good as the library. The
// library's sources stay as they are. Never part of a product.
#include "tests/validator/Hooks.h"

#include <vixavideofx/ClassIds.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>

extern IMAGE_DOS_HEADER imageBase __asm__(SYMBOL("__ImageBase"));

namespace broken {

namespace {

using namespace vixavideofx;

struct Exchanged
{
    void** entry;
    void* before;
    void* instead;
};
std::vector<Exchanged> exchanged; // written while faults are planted, by one thread

const IMAGE_DATA_DIRECTORY& DirectoryOf(const BYTE* module, int index)
{
    const auto* const headers =
        reinterpret_cast<const IMAGE_NT_HEADERS*>(module + reinterpret_cast<const IMAGE_DOS_HEADER*>(module)->e_lfanew);
    return headers->OptionalHeader.DataDirectory[index];
}

// The entry points.

// Another function, or none, in the table of exports.
void Export(std::string_view name, void* function)
{
    auto* const module = reinterpret_cast<BYTE*>(&imageBase);
    const auto* const table = reinterpret_cast<IMAGE_EXPORT_DIRECTORY*>(
        module + DirectoryOf(module, IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
    const auto* const names = reinterpret_cast<DWORD*>(module + table->AddressOfNames);
    const auto* const ordinals = reinterpret_cast<WORD*>(module + table->AddressOfNameOrdinals);
    const auto place = static_cast<DWORD>(static_cast<BYTE*>(function) - module);
    for (DWORD i = 0; i < table->NumberOfNames; ++i)
        if (name == reinterpret_cast<const char*>(module + names[i]))
            Put(module + table->AddressOfFunctions + ordinals[i] * sizeof(DWORD), &place, sizeof place);
}

template <typename Function>
void* Address(Function* function)
{
    return reinterpret_cast<void*>(function);
}

const Fault* wanted = nullptr;

// One factory tells where the tables of the others are.
void PlantInObjects()
{
    Objects objects;
    for (const GUID* effect : {&CLSID_Emboss, &CLSID_AddPixel, &CLSID_FilterColor, &CLSID_InvertColor,
                               &CLSID_MultiplyPixel, &CLSID_GammaCorrection}) {
        DllGetClassObject(*effect, IID_PPV_ARGS(objects.factory.ReleaseAndGetAddressOf()));
        objects.factory.As(&objects.info);
        objects.filters.emplace_back();
        objects.factory->CreateInstance(nullptr, IID_PPV_ARGS(&objects.filters.back()));
    }
    wanted->plant(objects);
    // What is let go of here goes the library's own way.
    for (const Exchanged& each : exchanged)
        Put(each.entry, &each.before, sizeof each.before);
    objects = {};
    for (const Exchanged& each : exchanged)
        Put(each.entry, &each.instead, sizeof each.instead);
}

HRESULT WINAPI GetClassObject(REFCLSID classId, REFIID riid, void** object)
{
    [[maybe_unused]] static const bool planted = (PlantInObjects(), true);
    return DllGetClassObject(classId, riid, object);
}

HRESULT WINAPI LacksOne(REFCLSID classId, REFIID riid, void** object)
{
    return classId == CLSID_SoftenFilter ? CLASS_E_CLASSNOTAVAILABLE : DllGetClassObject(classId, riid, object);
}

HRESULT WINAPI ClearsPointer(REFCLSID classId, REFIID riid, void** object)
{
    const HRESULT result = DllGetClassObject(classId, riid, object);
    if (FAILED(result))
        *object = nullptr;
    return result;
}

HRESULT WINAPI JudgesClassFirst(REFCLSID classId, REFIID riid, void** object)
{
    void* factory = nullptr;
    const HRESULT known = DllGetClassObject(classId, IID_IClassFactory, &factory);
    if (FAILED(known))
        return known;
    static_cast<IUnknown*>(factory)->Release();
    return DllGetClassObject(classId, riid, object);
}

// The catalogue object for the factory.
HRESULT WINAPI GivesOther(REFCLSID classId, REFIID riid, void** object)
{
    const HRESULT result = DllGetClassObject(classId, riid, object);
    auto* const factory = SUCCEEDED(result) && riid == IID_IUnknown ? static_cast<IUnknown*>(*object) : nullptr;
    return factory ? factory->QueryInterface(IID_IEffectInfo, object) : result;
}

HRESULT WINAPI AlwaysUnload()
{
    return S_OK;
}

HRESULT WINAPI NeverUnload()
{
    return S_FALSE;
}

// The stack and the registers.
extern "C" {
void SpoilsTheCaller() __asm__("spoils_the_caller");
void WantsAlignment() __asm__("wants_alignment");
void* aligned __asm__("aligned_receive");
}
#ifdef _WIN64
__asm__(".text\nspoils_the_caller:\n\txorq %r12, %r12\n\tmovl $0x80004002, %eax\n\tret\n"
        "wants_alignment:\n\tleaq 8(%rsp), %rax\n\ttestq $31, %rax\n\tjz 1f\n\tmovq 0, %rax\n"
        "1:\tmovq aligned_receive(%rip), %rax\n\tjmp *%rax\n");
#else
__asm__(".text\nspoils_the_caller:\n\tmovl $0x80004002, %eax\n\tret\n"
        "wants_alignment:\n\tleal 4(%esp), %eax\n\ttestl $15, %eax\n\tjz 1f\n\tmovl 0, %eax\n"
        "1:\tjmp *aligned_receive\n");
#endif

// The report.

// To whoever listens: the library looks for the report of the checks among the open handles.
void Say(const char* text)
{
    for (UINT_PTR handle = 4; handle < 4096; handle += 4)
        if (DWORD written = 0; GetFileType(reinterpret_cast<HANDLE>(handle)) == FILE_TYPE_PIPE)
            WriteFile(reinterpret_cast<HANDLE>(handle), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}

// Between the host and its report.
using Writing = BOOL WINAPI(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*);
Writing* writing = nullptr;
bool forges = false; // makes a success of a failure; or else writes each line twice

BOOL WINAPI Meddling(HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* overlapped)
{
    char line[4096] = {};
    std::memcpy(line, data, std::min<std::size_t>(size, sizeof line - 1));
    if (!forges)
        writing(file, line, size, written, overlapped);
    else if (char* const failure = std::strstr(line, " 1 0 3 "))
        failure[5] = '0';
    const BOOL done = writing(file, line, size, written, overlapped);
    return done;
}

void Meddle()
{
    auto* const host = reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr));
    const auto& imports = DirectoryOf(host, IMAGE_DIRECTORY_ENTRY_IAT);
    writing = reinterpret_cast<Writing*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "WriteFile")));
    void* const other = Address(Meddling);
    for (BYTE* entry = host + imports.VirtualAddress; entry < host + imports.VirtualAddress + imports.Size;
         entry += sizeof(void*))
        if (*reinterpret_cast<void**>(entry) == Address(writing))
            Put(entry, &other, sizeof other);
}

constexpr Fault reportFaults[] = {
    {"report/flood", On<IEffectInfo, &IEffectInfo::GetVersion>([](auto real, ULONG* version) -> HRESULT {
         char line[5000];
         std::memset(line, '!', sizeof line - 1);
         for (line[sizeof line - 1] = '\0'; real.self;)
             Say(line); // it has no end
         return real(version);
     })},
    {"report/status", On<IEffectInfo, &IEffectInfo::GetVersion>([](auto real, ULONG* version) -> HRESULT {
         Say("0123456789abcdef 9 1 4 7 all is well\n");
         return real(version);
     })},
    {"report/forge", On<IEffectInfo, &IEffectInfo::GetVersion>([](auto real, ULONG* version) -> HRESULT {
         Meddle();
         forges = true;
         real(version);
         *version = 2;
         return S_OK;
     })},
    {"report/repeat", On<IEffectInfo, &IEffectInfo::GetVersion>([](auto real, ULONG* version) -> HRESULT {
         Meddle();
         return real(version);
     })},
    {"bad-input/misaligned-stack",
     [](Objects& objects) {
         EachOf<IMemInputPin>(objects, [](void* pin) {
             void** const entry = &(*static_cast<void***>(pin))[6]; // Receive
             Exchange(entry, Address(WantsAlignment));
             aligned = Before(entry);
         });
     }},
};

// What is planted when the library is loaded.
struct LoadFault
{
    std::string_view check;
    void (*plant)();
};

DWORD WINAPI Wait(void*)
{
    Sleep(INFINITE);
    return 0;
}

constexpr LoadFault loadFaults[] = {
    {"loading/no-threads", [] { CloseHandle(CreateThread(nullptr, 0, Wait, nullptr, 0, nullptr)); }},
    {"exports/names", [] { Export("DllUnregisterServer", &imageBase); }},
    {"exports/calling-convention", [] { Export("DllGetClassObject", Address(SpoilsTheCaller)); }},
    {"factories/all-classes", [] { Export("DllGetClassObject", Address(LacksOne)); }},
    {"factories/unknown-class", [] { Export("DllGetClassObject", Address(ClearsPointer)); }},
    {"factories/wrong-interface", [] { Export("DllGetClassObject", Address(JudgesClassFirst)); }},
    {"factories/unknown-is-factory", [] { Export("DllGetClassObject", Address(GivesOther)); }},
    {"unloading/fresh", [] { Export("DllCanUnloadNow", Address(NeverUnload)); }},
    {"unloading/objects", [] { Export("DllCanUnloadNow", Address(AlwaysUnload)); }},
    {"unloading/handles", [] { CreateEventW(nullptr, FALSE, FALSE, nullptr); }},
};

const struct Breaker
{
    Breaker()
    {
        char name[64] = "";
        GetEnvironmentVariableA("VIXA_FAULT", name, sizeof name);
        for (const LoadFault& each : loadFaults)
            if (each.check == name)
                each.plant();
        for (const auto faults :
             {CatalogueFaults(), PanelFaults(), FilterFaults(), std::span<const Fault>(reportFaults)})
            for (const Fault& each : faults)
                if (each.check == name)
                    wanted = &each;
        if (wanted)
            Export("DllGetClassObject", Address(GetClassObject));
    }
} breaker;

} // namespace

void Put(void* place, const void* value, std::size_t size)
{
    DWORD before = 0;
    VirtualProtect(place, size, PAGE_READWRITE, &before);
    std::memcpy(place, value, size);
    VirtualProtect(place, size, before, &before);
}

void* Before(void** entry)
{
    for (const Exchanged& each : exchanged)
        if (each.entry == entry)
            return each.before;
    std::abort(); // an object with a table that was not among those of the first factory
}

void Exchange(void** entry, void* function)
{
    for (const Exchanged& each : exchanged)
        if (each.entry == entry)
            return;
    exchanged.push_back({entry, *entry, function});
    Put(entry, &function, sizeof function);
}

} // namespace broken
