// How a broken build is broken: operations in the virtual tables of its objects are exchanged when it makes its first
// factory, exported functions when it is loaded. The library's sources stay as they are.
#pragma once

#include <vixavideofx/IEffectFilter.h>
#include <vixavideofx/IEffectInfo.h>
#include <vixavideofx/PropertySets.h>

#include <windows.h>

#include <strmif.h>
#include <wrl/client.h>

#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

// Calling conventions are attributes, which templates take along and warn about.
#pragma GCC diagnostic ignored "-Wignored-attributes"

// A function or object by its symbol.
#ifdef _WIN64
#define SYMBOL(name) name
#else
#define SYMBOL(name) "_" name
#endif

namespace broken {

using Microsoft::WRL::ComPtr;

// One of each kind of object, whose tables all others share. There is a filter for each effect.
struct Objects
{
    ComPtr<IClassFactory> factory;
    ComPtr<IEffectInfo> info;
    std::vector<ComPtr<IBaseFilter>> filters;
};

// The fault that is meant for a check, and how it is planted.
struct Fault
{
    std::string_view check;
    void (*plant)(Objects& objects);
};

std::span<const Fault> CatalogueFaults();
std::span<const Fault> PanelFaults();
std::span<const Fault> FilterFaults();

// Writes where nothing may be written.
void Put(void* place, const void* value, std::size_t size);

// What stood in an entry of a virtual table before it was exchanged.
void* Before(void** entry);
// Exchanges it, unless it was before.
void Exchange(void** entry, void* function);

// The operation that stands behind an exchanged one, for the object that was called.
template <typename Result, typename... Args>
struct Real
{
    void* self;
    void* function;

    Result operator()(Args... args) const
    {
        return reinterpret_cast<Result(STDMETHODCALLTYPE*)(void*, Args...)>(function)(self, args...);
    }
    IUnknown* Object() const { return static_cast<IUnknown*>(self); }
};

// Stands in a virtual table and calls the body, which has no state, with the real operation and the arguments.
template <typename Body, typename Result, typename... Args>
struct Stand
{
    static inline std::size_t slot = 0;

    static Result STDMETHODCALLTYPE In(void* self, Args... args)
    {
        return Body{}(Real<Result, Args...>{self, Before(&(*static_cast<void***>(self))[slot])}, args...);
    }
};

template <typename Body, typename Base, typename Result, typename... Args>
void Hook(void* object, Result (STDMETHODCALLTYPE Base::*method)(Args...))
{
    std::size_t place = 0; // such a pointer holds how far into the table its operation stands, and one more
    std::memcpy(&place, &method, sizeof place);
    using Here = Stand<Body, Result, Args...>;
    Here::slot = (place - 1) / sizeof(void*);
    Exchange(&(*static_cast<void***>(object))[Here::slot], reinterpret_cast<void*>(Here::In));
}

template <typename Interface, typename Function>
void EachOf(Objects& objects, Function function)
{
    if constexpr (std::is_same_v<Interface, IClassFactory>) {
        function(objects.factory.Get());
    } else if constexpr (std::is_same_v<Interface, IEffectInfo>) {
        function(objects.info.Get());
    } else {
        for (const auto& filter : objects.filters) {
            ComPtr<Interface> face;
            if (SUCCEEDED(filter.As(&face)))
                function(face.Get());
            for (const WCHAR* id : {L"In", L"Out"}) {
                ComPtr<IPin> pin;
                filter->FindPin(id, &pin);
                if (SUCCEEDED(pin.As(&face)))
                    function(face.Get());
            }
        }
    }
}

// A plant: one operation of every object that has the interface does what the body does, which is called as
// body(real, arguments...).
template <typename Interface, auto method, typename Body>
constexpr auto On(Body)
{
    return [](Objects& objects) { EachOf<Interface>(objects, [](void* object) { Hook<Body>(object, method); }); };
}

// Every object's first operation, which has a template of the same name beside it.
constexpr HRESULT (STDMETHODCALLTYPE IUnknown::*query)(REFIID, void**) = &IUnknown::QueryInterface;

// Bodies.

// A number one too high.
constexpr auto oneMore = [](auto real, ULONG* number) {
    const HRESULT result = real(number);
    if (number)
        ++*number;
    return result;
};

// Another result code for one.
template <HRESULT right, HRESULT wrong>
constexpr auto answers = [](auto real, auto... arguments) -> HRESULT {
    const HRESULT result = real(arguments...);
    return result == right ? wrong : result;
};

} // namespace broken
