// Creates objects of registered classes by key, type or name.
#pragma once

#include <unknwn.h>

#include <cstdint>
#include <typeinfo>

struct IObjectFactory : virtual IUnknown
{
    // One registered class.
    struct IClassMethod
    {
        virtual ~IClassMethod() = default;
        virtual const std::type_info& GetType() const noexcept = 0;
    };

    // A registered class that can be instantiated.
    struct ICreateMethod : virtual IClassMethod
    {
        // A new object of the class, as a pointer to exactly that class; the caller owns it. Null when memory is short.
        virtual void* Create() noexcept = 0;
    };

    // GetNameKey of the type's printable name without "struct " and "class ".
    virtual std::uint32_t GetTypeKey(const std::type_info& type) = 0;
    // The key of a name: h = h + ((h << 1) ^ c) over its bytes as signed values, modulo 2^32, from 0. Null gives 0.
    virtual std::uint32_t GetNameKey(const char* name) noexcept = 0;
    // The registered class of a key, or null. The factory owns it.
    virtual IClassMethod* FindMethod(std::uint32_t key) noexcept = 0;
    // Null when no class is registered under the key, when it can't be instantiated, or when memory is short.
    virtual void* CreateByType(const std::type_info& type) = 0;
    virtual void* CreateByName(const char* name) noexcept = 0;
    virtual void* CreateByKey(std::uint32_t key) noexcept = 0;
};
