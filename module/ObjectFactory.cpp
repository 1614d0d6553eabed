#include "module/ObjectFactory.h"

#include <cxxabi.h>

#include <cstdlib>
#include <string>
#include <string_view>

namespace {

// The type's name as a programmer writes it. The compiler's own form is mangled.
std::string PrintableName(const std::type_info& type)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                           &std::free);
    return name && status == 0 ? name.get() : type.name();
}

void EraseAll(std::string& text, std::string_view part)
{
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
}

} // namespace

std::uint32_t ObjectFactory::GetTypeKey(const std::type_info& type)
{
    std::string name = PrintableName(type);
    EraseAll(name, "struct ");
    EraseAll(name, "class ");
    return GetNameKey(name.c_str());
}

std::uint32_t ObjectFactory::GetNameKey(const char* name) noexcept
{
    std::uint32_t key = 0;
    for (; name && *name; ++name) {
        const auto c = static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(*name)));
        key += (key << 1) ^ c;
    }
    return key;
}

IObjectFactory::IClassMethod* ObjectFactory::FindMethod(std::uint32_t key) noexcept
{
    const auto found = methods.find(key);
    return found == methods.end() ? nullptr : found->second.get();
}

void* ObjectFactory::CreateByType(const std::type_info& type)
{
    return CreateByKey(GetTypeKey(type));
}

void* ObjectFactory::CreateByName(const char* name) noexcept
{
    return CreateByKey(GetNameKey(name));
}

void* ObjectFactory::CreateByKey(std::uint32_t key) noexcept
{
    auto* const method = dynamic_cast<ICreateMethod*>(FindMethod(key));
    return method ? method->Create() : nullptr;
}

bool ObjectFactory::Register(IClassMethod* method, const char* name)
{
    if (!method)
        return false;
    const auto key = name ? GetNameKey(name) : GetTypeKey(method->GetType());
    if (key == 0 || methods.contains(key))
        return false;
    methods.emplace(key, method);
    return true;
}
