// The compiled-in configuration document against the structure that its readers rely on.
#include "sxs/Platform.h"
#include "sxs/SxsConfiguration.h"
#include "sxs/XmlText.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using Attributes = std::map<std::string, std::string>;

Attributes AttributesOf(const TiXmlElement& element)
{
    Attributes found;
    for (const TiXmlAttribute* a = element.FirstAttribute(); a; a = a->Next()) {
        found[a->Name()] = a->Value();
        EXPECT_NO_THROW(vixa::sxs::WideFromUtf8(a->Value()));
    }
    return found;
}

std::vector<const TiXmlElement*> ChildrenOf(const TiXmlElement& element)
{
    std::vector<const TiXmlElement*> found;
    for (const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement())
        found.push_back(child);
    return found;
}

void ExpectNames(const TiXmlElement& element, const std::set<std::string>& required,
                 const std::set<std::string>& optional = {})
{
    const Attributes found = AttributesOf(element);
    for (const std::string& name : required)
        EXPECT_TRUE(found.contains(name)) << "line " << element.Row() << ": no " << name;
    for (const auto& [name, value] : found)
        EXPECT_TRUE(required.contains(name) || optional.contains(name)) << "line " << element.Row() << ": " << name;
}

int IdOf(const TiXmlElement& element)
{
    int id = -1;
    EXPECT_EQ(element.QueryIntAttribute("id", &id), TIXML_SUCCESS) << "line " << element.Row();
    return id;
}

void ExpectPath(const TiXmlElement& element, const char* attribute)
{
    const std::string path = element.Attribute(attribute);
    EXPECT_FALSE(path.empty() || path.front() == '\\' || path.back() == '\\') << "line " << element.Row();
    EXPECT_EQ(path.find("\\\\"), std::string::npos) << "line " << element.Row();
}

void ExpectLine(const TiXmlElement& line)
{
    ExpectNames(line, {"id", "name"});
    std::vector<std::string> wanted = {"FOLDERS",
                                       "REGISTRY-SHARED-FOR-ALL",
                                       "REGISTRY-SHARED-FOR-LINES",
                                       "REGISTRY-SHARED-FOR-APPLICATIONS",
                                       "REGISTRY-INSTALLATION",
                                       "REGISTRY-APPLICATIONS"};
    if (IdOf(line) == 708)
        wanted.erase(wanted.begin() + 2, wanted.begin() + 4);
    const auto children = ChildrenOf(line);
    ASSERT_GT(children.size(), wanted.size()) << "line " << line.Row();
    std::set<std::string> ids;
    for (std::size_t i = 0; i < children.size(); ++i) {
        const TiXmlElement& child = *children[i];
        const std::string name = child.Value();
        EXPECT_EQ(name, i < wanted.size() ? wanted[i] : "APPLICATION") << "line " << child.Row();
        EXPECT_EQ(child.FirstChildElement(), nullptr);
        if (name == "FOLDERS") {
            ExpectNames(child, {"ALLUSERS", "CURRENTUSER", "SHARED-FOR-ALL", "SHARED-FOR-GENERATION"});
        } else if (name == "APPLICATION") {
            ExpectNames(child, {"name"}, {"id", "subkey", "folder"});
            const bool repeated = child.Attribute("id") && !ids.insert(child.Attribute("id")).second;
            EXPECT_FALSE(repeated) << "line " << child.Row();
            if (child.Attribute("subkey"))
                ExpectPath(child, "subkey");
        } else {
            ExpectNames(child, {"HKLM", "HKCU"});
            ExpectPath(child, "HKLM");
            ExpectPath(child, "HKCU");
        }
    }
}

TEST(Document, KeepsToItsStructure)
{
    const std::string text = vixa::sxs::familyDocument;
    EXPECT_TRUE(text.starts_with(R"(<?xml version="1.0" encoding="utf-8" standalone="yes"?>)"));
    TiXmlDocument document;
    ASSERT_TRUE(vixa::sxs::ParseXml(text, document));
    const TiXmlElement* root = document.RootElement();
    ASSERT_STREQ(root->Value(), "VIXA");
    EXPECT_TRUE(AttributesOf(*root).empty());
    EXPECT_EQ(root->NextSiblingElement(), nullptr);

    std::vector<int> generations;
    int firstGenerationWith1025 = 0;
    for (const TiXmlElement* generation : ChildrenOf(*root)) {
        ASSERT_STREQ(generation->Value(), "GENERATION");
        ExpectNames(*generation, {"id"}, {"name"});
        generations.push_back(IdOf(*generation));
        std::set<int> lines;
        for (const TiXmlElement* line : ChildrenOf(*generation)) {
            ASSERT_STREQ(line->Value(), "PRODUCT-LINE");
            EXPECT_TRUE(lines.insert(IdOf(*line)).second) << "line " << line->Row();
            ExpectLine(*line);
        }
        EXPECT_FALSE(lines.empty()) << "line " << generation->Row();
        EXPECT_EQ(lines.contains(708), generations.back() == 7);
        if (lines.contains(1025) && firstGenerationWith1025 == 0)
            firstGenerationWith1025 = generations.back();
    }
    EXPECT_EQ(generations, (std::vector<int>{12, 11, 10, 9, 8, 7}));
    EXPECT_EQ(firstGenerationWith1025, 12);
}

TEST(Document, EveryPathResolves)
{
    SxsConfiguration configuration;
    for (const long line : {1025, 1030, 1040, 925, 930, 825, 708}) {
        for (const long root : {vixa::sxs::LOCAL_MACHINE, vixa::sxs::CURRENT_USER}) {
            for (long element = 0; element < 4; ++element)
                EXPECT_FALSE(configuration.ResolveRegistryPath(root, element, 0, L"", line).empty()) << line;
            EXPECT_EQ(configuration.ResolveRegistryPath(root, 4, 0, L"APPLICATIONSROOT", line), L"Software\\Vixa");
        }
    }
    EXPECT_EQ(configuration.ResolveRegistryPath(1, 4, 130, L"", 1025), L"Software\\Vixa\\Vixa 12\\Editor");
    EXPECT_EQ(configuration.GenerationId(), 12);
    EXPECT_EQ(configuration.ProductLineName(), L"Studio");
}

} // namespace
