#include "module/ObjectFactory.h"

#include <gtest/gtest.h>
#include <wrl/client.h>

namespace {

struct Plain
{
    static inline int alive = 0;
    Plain() { ++alive; }
    ~Plain() { --alive; }
};
class Other
{
};

// A registered class that nobody can instantiate.
struct Abstract final : IObjectFactory::IClassMethod
{
    const std::type_info& GetType() const noexcept override { return typeid(int); }
};

Microsoft::WRL::ComPtr<ObjectFactory> NewFactory()
{
    Microsoft::WRL::ComPtr<ObjectFactory> factory;
    *factory.GetAddressOf() = new ObjectFactory; // it starts with its creator's reference
    return factory;
}

TEST(ObjectFactory, NameKeys)
{
    const auto factory = NewFactory();
    EXPECT_EQ(factory->GetNameKey(""), 0u);
    EXPECT_EQ(factory->GetNameKey(nullptr), 0u);
    EXPECT_EQ(factory->GetNameKey("A"), 65u);
    EXPECT_EQ(factory->GetNameKey("AB"), 257u);
    EXPECT_EQ(factory->GetNameKey("\xE9"), 0xFFFFFFE9u) << "bytes count as signed";
}

TEST(ObjectFactory, TypeKeysIgnoreTheKindOfType)
{
    const auto factory = NewFactory();
    EXPECT_EQ(factory->GetTypeKey(typeid(ObjectFactory)), factory->GetNameKey("ObjectFactory"));
    EXPECT_EQ(factory->GetTypeKey(typeid(int)), factory->GetNameKey("int"));
    EXPECT_NE(factory->GetTypeKey(typeid(Plain)), factory->GetTypeKey(typeid(Other)));
}

TEST(ObjectFactory, CreatesWhatIsRegistered)
{
    const auto factory = NewFactory();
    auto* const method = new ObjectFactory::CreateMethod<Plain>;
    ASSERT_TRUE(factory->Register(method, nullptr));
    EXPECT_EQ(factory->FindMethod(factory->GetTypeKey(typeid(Plain))), method);
    EXPECT_EQ(method->GetType(), typeid(Plain));
    auto* const made = static_cast<Plain*>(factory->CreateByType(typeid(Plain)));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(Plain::alive, 1);
    delete made;
    EXPECT_EQ(factory->CreateByName("Plain"), nullptr) << "the type's name has its namespace";
    EXPECT_EQ(factory->CreateByKey(1), nullptr);
}

TEST(ObjectFactory, RefusesTakenKeysAndKeepsTheFirst)
{
    const auto factory = NewFactory();
    auto* const first = new ObjectFactory::CreateMethod<Plain>;
    ASSERT_TRUE(factory->Register(first, "class Plain"));
    ObjectFactory::CreateMethod<Other> second;
    EXPECT_FALSE(factory->Register(&second, "class Plain"));
    EXPECT_FALSE(factory->Register(&second, "")) << "the key 0";
    EXPECT_FALSE(factory->Register(nullptr, "name"));
    EXPECT_EQ(factory->FindMethod(factory->GetNameKey("class Plain")), first);

    ASSERT_TRUE(factory->Register(new Abstract, "abstract"));
    EXPECT_EQ(factory->CreateByName("abstract"), nullptr);
}

TEST(ObjectFactory, CountsReferencesAndOffersNoInterface)
{
    const auto factory = NewFactory();
    void* object = factory.Get();
    EXPECT_EQ(factory->QueryInterface(IID_IUnknown, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(factory->AddRef(), 2u);
    EXPECT_EQ(factory->Release(), 1u);
}

} // namespace
