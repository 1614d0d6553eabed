// The library's object factory: an ordered map from a class's key to the method that creates it.
#pragma once

#include "framework/GCUnknown.h"
#include "module/IObjectFactory.h"
#include "module/NotCopyable.h"

#include <map>
#include <memory>
#include <new>

// Written during attach and detach only, under the loader's lock; read from any thread in between.
class ObjectFactory : public IObjectFactory, public virtual GCUnknown, private NotCopyable
{
public:
    template <typename Class>
    struct CreateMethod final : ICreateMethod
    {
        const std::type_info& GetType() const noexcept override { return typeid(Class); }
        void* Create() noexcept override { return new (std::nothrow) Class; }
    };

    ObjectFactory() = default;
    ~ObjectFactory() override = default;

    std::uint32_t GetTypeKey(const std::type_info& type) override;
    std::uint32_t GetNameKey(const char* name) noexcept override;
    IClassMethod* FindMethod(std::uint32_t key) noexcept override;
    void* CreateByType(const std::type_info& type) override;
    void* CreateByName(const char* name) noexcept override;
    void* CreateByKey(std::uint32_t key) noexcept override;

    // Enters a class under the name's key, or under its type's key when `name` is null. True when the factory took
    // `method` over; false, and the caller keeps it, for a null method, the key 0, or a key that is taken.
    bool Register(IClassMethod* method, const char* name);

private:
    std::map<std::uint32_t, std::unique_ptr<IClassMethod>> methods;
};
