#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

using namespace test;

namespace {

class Memory : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(S_OK, CreateMemoryAllocator(&allocator)); }
    void TearDown() override
    {
        allocator.Reset();
        EXPECT_EQ(0, CBaseObject::ObjectsActive());
    }
    HRESULT Set(LONG count, LONG size, LONG alignment = 1, LONG prefix = 0)
    {
        ALLOCATOR_PROPERTIES request = {count, size, alignment, prefix};
        return allocator->SetProperties(&request, &granted);
    }
    ComPtr<IMediaSample> Get(DWORD flags = AM_GBF_NOWAIT)
    {
        ComPtr<IMediaSample> sample;
        EXPECT_EQ(S_OK, allocator->GetBuffer(&sample, nullptr, nullptr, flags));
        return sample;
    }

    ComPtr<IMemAllocator> allocator;
    ALLOCATOR_PROPERTIES granted = {};
};

TEST_F(Memory, PropertiesAreJudged)
{
    EXPECT_EQ(VFW_E_SIZENOTSET, allocator->Commit());
    EXPECT_EQ(VFW_E_BADALIGN, Set(1, 16, 3));
    EXPECT_EQ(VFW_E_BADALIGN, Set(1, 16, 0));
    EXPECT_EQ(E_INVALIDARG, Set(-1, 16));
    EXPECT_EQ(E_INVALIDARG, Set(1, 16, 1, -4));
    EXPECT_EQ(E_POINTER, allocator->SetProperties(nullptr, &granted));
    EXPECT_EQ(E_POINTER, allocator->GetProperties(nullptr));
    EXPECT_EQ(S_OK, Set(0, 16));
    EXPECT_EQ(VFW_E_SIZENOTSET, allocator->Commit());
    EXPECT_EQ(S_OK, Set(0x10000, 0x10000));
    EXPECT_EQ(E_OUTOFMEMORY, allocator->Commit()) << "4 GiB";
    EXPECT_EQ(S_OK, Set(MAXLONG, MAXLONG, 1 << 30, MAXLONG));
    EXPECT_EQ(E_OUTOFMEMORY, allocator->Commit());
    EXPECT_EQ(S_OK, Set(2, 16));
    EXPECT_EQ(S_OK, allocator->Commit());
    EXPECT_EQ(VFW_E_ALREADY_COMMITTED, Set(3, 16));
    ComPtr<IMediaSample> sample = Get();
    allocator->Decommit();
    EXPECT_EQ(VFW_E_BUFFERS_OUTSTANDING, Set(3, 16));
    sample.Reset();
    EXPECT_EQ(S_OK, Set(3, 16));
}

TEST_F(Memory, BuffersAreAlignedAndApart)
{
    for (const LONG alignment : {1, 16, 4096, 0x40000}) {
        ASSERT_EQ(S_OK, Set(3, 100, alignment, 24));
        ASSERT_EQ(S_OK, allocator->Commit());
        const ComPtr<IMediaSample> samples[] = {Get(), Get(), Get()};
        BYTE* bytes[3] = {};
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(S_OK, samples[i]->GetPointer(&bytes[i]));
            EXPECT_EQ(0u, reinterpret_cast<ULONG_PTR>(bytes[i]) % static_cast<ULONG>(alignment));
            EXPECT_EQ(100, samples[i]->GetSize());
            std::memset(bytes[i] - 24, i + 1, 124); // prefix and buffer are its own
        }
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(i + 1, bytes[i][-24]);
            EXPECT_EQ(i + 1, bytes[i][99]);
        }
        allocator->Decommit();
    }
}

TEST_F(Memory, DecommitWakesAndBuffersOutliveIt)
{
    ASSERT_EQ(S_OK, Set(1, 16));
    ComPtr<IMediaSample> none;
    EXPECT_EQ(VFW_E_NOT_COMMITTED, allocator->GetBuffer(&none, nullptr, nullptr, 0));
    EXPECT_EQ(E_POINTER, allocator->GetBuffer(nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(E_POINTER, allocator->ReleaseBuffer(nullptr));
    ASSERT_EQ(S_OK, allocator->Commit());
    ComPtr<IMediaSample> sample = Get();
    EXPECT_EQ(VFW_E_TIMEOUT, allocator->GetBuffer(&none, nullptr, nullptr, AM_GBF_NOWAIT));

    struct Waiter
    {
        IMemAllocator* allocator;
        HRESULT result;
        static DWORD WINAPI Wait(void* self) noexcept
        {
            auto& waiter = *static_cast<Waiter*>(self);
            ComPtr<IMediaSample> got;
            waiter.result = waiter.allocator->GetBuffer(&got, nullptr, nullptr, 0);
            return 0;
        }
    };
    const auto waitWhile = [&](auto action) {
        Waiter waiter = {allocator.Get(), S_OK};
        vixa::UniqueThread thread(CreateThread(nullptr, 0, Waiter::Wait, &waiter, 0, nullptr));
        EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), WaitForSingleObject(thread.get(), 20)) << "no buffer, so it waits";
        action();
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread.get(), 5000));
        return waiter.result;
    };
    EXPECT_EQ(S_OK, waitWhile([&] { sample.Reset(); }));
    sample = Get();
    EXPECT_EQ(VFW_E_NOT_COMMITTED, waitWhile([&] { allocator->Decommit(); }));

    // A commit while the buffer is out takes the decommit back.
    EXPECT_EQ(S_OK, allocator->Commit());
    sample.Reset();
    sample = Get();
    allocator->Decommit();
    BYTE* bytes = nullptr;
    sample->GetPointer(&bytes);
    bytes[15] = 1;
    allocator.Reset();
    EXPECT_EQ(1, CBaseObject::ObjectsActive()) << "the sample keeps its allocator";
    bytes[15] = 2;
    sample.Reset();
}

TEST_F(Memory, FreeCountAndNotice)
{
    struct Listener : IMemAllocatorNotifyCallbackTemp
    {
        int released = 0;
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) noexcept override { return E_NOINTERFACE; }
        ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
        ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
        HRESULT STDMETHODCALLTYPE NotifyRelease() noexcept override
        {
            ++released;
            return S_OK;
        }
    } listener;
    ComPtr<IMemAllocatorCallbackTemp> callback;
    ASSERT_EQ(S_OK, allocator.As(&callback));
    ASSERT_EQ(S_OK, Set(2, 16));
    ASSERT_EQ(S_OK, allocator->Commit());
    EXPECT_EQ(S_OK, callback->SetNotify(&listener));
    LONG count = 0;
    {
        const ComPtr<IMediaSample> sample = Get();
        EXPECT_EQ(S_OK, callback->GetFreeCount(&count));
        EXPECT_EQ(1, count);
    }
    EXPECT_EQ(1, listener.released);
    callback->GetFreeCount(&count);
    EXPECT_EQ(2, count);
    EXPECT_EQ(E_POINTER, callback->GetFreeCount(nullptr));
    callback->SetNotify(nullptr);
}

TEST_F(Memory, SampleTimesFlagsAndLengths)
{
    ASSERT_EQ(S_OK, Set(1, 16));
    ASSERT_EQ(S_OK, allocator->Commit());
    ComPtr<IMediaSample> sample = Get();
    REFERENCE_TIME start = 10, stop = 20, a = 0, b = 0;
    EXPECT_EQ(VFW_E_SAMPLE_TIME_NOT_SET, sample->GetTime(&a, &b));
    EXPECT_EQ(VFW_E_MEDIA_TIME_NOT_SET, sample->GetMediaTime(&a, &b));
    sample->SetTime(&start, nullptr);
    EXPECT_EQ(VFW_S_NO_STOP_TIME, sample->GetTime(&a, &b));
    EXPECT_EQ(11, b);
    sample->SetTime(&start, &stop);
    EXPECT_EQ(S_OK, sample->GetTime(&a, &b));
    EXPECT_EQ(20, b);
    EXPECT_EQ(E_POINTER, sample->GetTime(nullptr, &b));
    EXPECT_EQ(E_POINTER, sample->GetPointer(nullptr));
    EXPECT_EQ(E_POINTER, sample->SetMediaTime(&start, nullptr));
    EXPECT_EQ(S_OK, sample->SetMediaTime(&start, &stop));
    EXPECT_EQ(VFW_E_BUFFER_OVERFLOW, sample->SetActualDataLength(17));
    EXPECT_EQ(E_INVALIDARG, sample->SetActualDataLength(-1));
    EXPECT_EQ(16, sample->GetActualDataLength());
    EXPECT_EQ(S_OK, sample->SetActualDataLength(0));
    sample->SetSyncPoint(TRUE);
    sample->SetPreroll(TRUE);
    sample->SetDiscontinuity(TRUE);
    CMediaType type = VideoType(2, 2);
    EXPECT_EQ(S_OK, sample->SetMediaType(&type));
    AM_MEDIA_TYPE* copy = nullptr;
    EXPECT_EQ(S_OK, sample->GetMediaType(&copy));
    EXPECT_TRUE(CMediaType(*copy) == type);
    DeleteMediaType(copy);

    IMediaSample* const same = sample.Get();
    sample.Reset();
    sample = Get();
    ASSERT_EQ(same, sample.Get());
    EXPECT_EQ(S_FALSE, sample->IsSyncPoint()) << "a buffer that comes back is clean";
    EXPECT_EQ(S_FALSE, sample->IsPreroll());
    EXPECT_EQ(S_FALSE, sample->IsDiscontinuity());
    EXPECT_EQ(S_FALSE, sample->GetMediaType(&copy));
    EXPECT_EQ(nullptr, copy);
    EXPECT_EQ(VFW_E_SAMPLE_TIME_NOT_SET, sample->GetTime(&a, &b));
    EXPECT_EQ(VFW_E_MEDIA_TIME_NOT_SET, sample->GetMediaTime(&a, &b));
    EXPECT_EQ(16, sample->GetActualDataLength());
}

TEST_F(Memory, SamplePropertiesInPart)
{
    ASSERT_EQ(S_OK, Set(1, 16));
    ASSERT_EQ(S_OK, allocator->Commit());
    const ComPtr<IMediaSample> sample = Get();
    ComPtr<IMediaSample2> sample2;
    ASSERT_EQ(S_OK, sample.As(&sample2));
    const auto set = [&](AM_SAMPLE2_PROPERTIES& properties, std::size_t size) {
        return sample2->SetProperties(static_cast<DWORD>(size), reinterpret_cast<BYTE*>(&properties));
    };

    AM_SAMPLE2_PROPERTIES given = {};
    given.dwSampleFlags = AM_SAMPLE_SPLICEPOINT | AM_SAMPLE_TIMEVALID;
    given.lActual = 5;
    given.tStart = 77;
    given.dwStreamId = 3;
    EXPECT_EQ(S_OK, set(given, offsetof(AM_SAMPLE2_PROPERTIES, tStart)));
    EXPECT_EQ(S_OK, sample->IsSyncPoint());
    EXPECT_EQ(5, sample->GetActualDataLength());

    // A structure that is cut within a field does not have that field; bytes behind it stay as they were.
    for (DWORD size = 0; size <= sizeof given + 8; ++size) {
        std::vector<BYTE> bytes(sizeof given + 16, 0xA5);
        EXPECT_EQ(S_OK, sample2->GetProperties(size, bytes.data()));
        for (std::size_t i = std::min<std::size_t>(size, sizeof given); i < bytes.size(); ++i)
            ASSERT_EQ(0xA5, bytes[i]) << "size " << size << ", byte " << i;
    }
    AM_SAMPLE2_PROPERTIES read = {};
    EXPECT_EQ(S_OK, sample2->GetProperties(sizeof read, reinterpret_cast<BYTE*>(&read)));
    EXPECT_EQ(0, read.tStart) << "was beyond the size";
    EXPECT_EQ(static_cast<DWORD>(AM_STREAM_MEDIA), read.dwStreamId);
    EXPECT_EQ(16, read.cbBuffer);
    EXPECT_EQ(sizeof read, read.cbData);
    EXPECT_EQ(E_POINTER, sample2->GetProperties(4, nullptr));
    EXPECT_EQ(E_POINTER, sample2->SetProperties(4, nullptr));

    CMediaType type = VideoType(2, 2);
    read.pMediaType = &type;
    read.dwSampleFlags = AM_SAMPLE_TYPECHANGED;
    EXPECT_EQ(S_OK, set(read, sizeof read));
    EXPECT_EQ(S_FALSE, sample->IsSyncPoint());
    AM_MEDIA_TYPE* copy = nullptr;
    EXPECT_EQ(S_OK, sample->GetMediaType(&copy));
    DeleteMediaType(copy);

    // What cannot be taken changes nothing at all.
    AM_SAMPLE2_PROPERTIES bad = read;
    bad.lActual = 17;
    bad.dwStreamId = 8;
    EXPECT_EQ(VFW_E_BUFFER_OVERFLOW, set(bad, sizeof bad));
    bad.lActual = -1;
    EXPECT_EQ(E_INVALIDARG, set(bad, sizeof bad));
    bad = read;
    bad.dwStreamId = 8;
    bad.pbBuffer = reinterpret_cast<BYTE*>(&bad);
    EXPECT_EQ(E_INVALIDARG, set(bad, sizeof bad));
    bad = read;
    bad.cbBuffer = 8;
    EXPECT_EQ(E_INVALIDARG, set(bad, sizeof bad));
    bad = read;
    bad.dwSampleFlags = 0x8000;
    EXPECT_EQ(E_INVALIDARG, set(bad, sizeof bad));
    EXPECT_EQ(S_OK, sample2->GetProperties(sizeof read, reinterpret_cast<BYTE*>(&read)));
    EXPECT_EQ(static_cast<DWORD>(AM_STREAM_MEDIA), read.dwStreamId);
    EXPECT_EQ(5, read.lActual);
}

TEST(MediaType, CopiesAndPartialTypes)
{
    const CMediaType full = VideoType(8, 4);
    CMediaType partial;
    EXPECT_TRUE(partial.IsPartiallySpecified());
    EXPECT_TRUE(full.MatchesPartial(&partial));
    partial.SetType(&MEDIATYPE_Audio);
    EXPECT_FALSE(full.MatchesPartial(&partial));
    partial.SetType(&MEDIATYPE_Video);
    partial.SetFormatType(&FORMAT_VideoInfo);
    EXPECT_FALSE(partial.IsPartiallySpecified());
    EXPECT_FALSE(full.MatchesPartial(&partial)) << "its format block is another";
    partial.SetFormat(full.Format(), full.FormatLength());
    EXPECT_TRUE(full.MatchesPartial(&partial));

    CMediaType copy(full);
    EXPECT_TRUE(copy == full);
    copy = *&copy;
    EXPECT_TRUE(copy == full);
    const CMediaType moved(std::move(copy));
    EXPECT_TRUE(moved == full);
    CMediaType grown(full);
    ASSERT_NE(nullptr, grown.ReallocFormatBuffer(200));
    EXPECT_EQ(0, std::memcmp(grown.Format(), full.Format(), full.FormatLength()));
    EXPECT_FALSE(grown == full);
}

} // namespace
