#include "host/validate/Contract.h"

#include <vixavideofx/ClassIds.h>

#include <stdexcept>

namespace vixahost::validate {

using namespace vixavideofx;

namespace {

const std::vector<Promise> promises = {
    {"Add pixel", &CLSID_AddPixel, 3, "Color filter", 0x7FFFFF9C, 542, 540, {0, 0, 0, 0}, {50, -30, 7, 0}},
    {"Multiply pixel", &CLSID_MultiplyPixel, 3, "Color filter", 0x7FFFFF9D, 529, 540, {100}, {150}},
    {"Gamma correction", &CLSID_GammaCorrection, 3, "Color filter", 0x7FFFFF9E, 530, 540, {100}, {200}},
    {"Filter color", &CLSID_FilterColor, 3, "Color filter", 0x7FFFFFA2, 539, 540, {0, 0}, {40, 2}},
    {"Invert color", &CLSID_InvertColor, 3, "Color filter", 0x7FFFFFA9, 541, 540, {0}, {7}},
    {"Enhance edges", &CLSID_EnhanceEdges, 4, "Edges", 0x7FFFFF9C, 534, 543, {4}, {4}},
    {"Light edges", &CLSID_LightEdges, 4, "Edges", 0x7FFFFF9C, 536, 543, {6}, {6}},
    {"Detect edges", &CLSID_DetectEdges, 4, "Edges", 0x7FFFFF9C, 531, 543, {1}, {1}},
    {"Shift edges", &CLSID_ShiftEdges, 4, "Edges", 0x7FFFFF9D, 537, 543, {7}, {7}},
    {"Emboss", &CLSID_Emboss, 4, "Edges", 0x7FFFFF9E, 532, 543, {2}, {2}},
    {"Enhance details", &CLSID_EnhanceDetails, 5, "Sharpness", 0x7FFFFF9C, 533, 544, {3}, {3}},
    {"Enhance focus", &CLSID_EnhanceFocus, 5, "Sharpness", 0x7FFFFF9C, 535, 544, {5}, {5}},
    {"Soften filter", &CLSID_SoftenFilter, 5, "Sharpness", 0x7FFFFFAF, 538, 544, {8}, {8}},
};

} // namespace

std::span<const Promise> Promises()
{
    return promises;
}

const Promise& PromiseOf(const GUID& classId)
{
    for (const Promise& promise : promises)
        if (*promise.classId == classId)
            return promise;
    throw std::out_of_range("no effect has this class identifier");
}

} // namespace vixahost::validate
