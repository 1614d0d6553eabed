// The library as a host sees it: loaded beside the test program, reached through its exports only.
#pragma once

#include "host/effects/EffectLibrary.h"
#include "host/validate/Contract.h"
#include "tests/support/ComTest.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/IEffectFilter.h>

namespace test {

using Microsoft::WRL::ComPtr;
using vixahost::validate::Promise, vixahost::validate::PromiseOf, vixahost::validate::Promises;

// A test that closes the books: no object of the library is left when it ends.
class LibraryTest : public ComTest
{
protected:
    void TearDown() override { EXPECT_TRUE(library.CanUnload()) << "an object of the library is still alive"; }

    ComPtr<IBaseFilter> Filter(REFCLSID effect, IUnknown* set = nullptr) const
    {
        auto filter = library.CreateFilter(effect, PromiseOf(effect).name);
        EXPECT_EQ(ParametersOf(filter)->SetPropertySet(set), S_OK);
        return filter;
    }
    static ComPtr<IEffectFilter> ParametersOf(const ComPtr<IBaseFilter>& filter)
    {
        ComPtr<IEffectFilter> parameters;
        EXPECT_EQ(filter.As(&parameters), S_OK);
        return parameters;
    }

    const vixahost::effects::EffectLibrary library;
};

} // namespace test
