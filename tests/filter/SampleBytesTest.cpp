#include "filter/SampleBytes.h"

#include "host/fixtures/HandSample.h"

#include <gtest/gtest.h>

#include <climits>

using namespace vixahost::fixtures;

namespace {

TEST(SampleBytes, LengthsThatLieAndSizesThatAreNotTold)
{
    const struct
    {
        long size, length;
        std::size_t buffer, valid;
    } cases[] = {{16, 16, 16, 16}, {16, 9, 16, 9},         {16, 17, 16, 16},      {16, LONG_MAX, 16, 16},
                 {16, 0, 16, 0},   {16, -1, 16, 0},        {16, LONG_MIN, 16, 0}, {0, 16, 16, 16},
                 {-1, 16, 16, 16}, {LONG_MIN, 16, 16, 16}, {0, 0, 0, 0},          {0, -1, 0, 0}};
    std::uint8_t bytes[16];
    for (const auto& c : cases) {
        HandSample sample(bytes);
        sample.size = c.size;
        sample.length = c.length;
        EXPECT_EQ(vixa::BufferOf(&sample).size(), c.buffer) << c.size << ", " << c.length;
        EXPECT_EQ(vixa::ValidBytesOf(&sample).size(), c.valid) << c.size << ", " << c.length;
        EXPECT_EQ(vixa::BufferOf(&sample).data(), bytes);
    }
    HandSample failing(bytes), null;
    failing.pointerResult = E_UNEXPECTED;
    null.size = null.length = 16;
    for (IMediaSample* sample : {static_cast<IMediaSample*>(&failing), static_cast<IMediaSample*>(&null),
                                 static_cast<IMediaSample*>(nullptr)}) {
        EXPECT_TRUE(vixa::BufferOf(sample).empty());
        EXPECT_TRUE(vixa::ValidBytesOf(sample).empty());
    }
}

} // namespace
