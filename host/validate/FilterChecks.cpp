// Group "filters": what an effect is in a filter graph before the first sample.
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"

#include <vixavideofx/ClassIds.h>

#include <string_view>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;

void Pins(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        ComPtr<IEnumPins> pins;
        RequireResult(filter->EnumPins(&pins), S_OK, "EnumPins");
        ComPtr<IPin> pin;
        for (const auto& [name, direction] : {std::pair{L"Input", PINDIR_INPUT}, {L"Output", PINDIR_OUTPUT}}) {
            RequireResult(pins->Next(1, pin.ReleaseAndGetAddressOf(), nullptr), S_OK, "the enumeration of two pins");
            PIN_INFO info = {};
            RequireResult(pin->QueryPinInfo(&info), S_OK, "QueryPinInfo");
            if (info.pFilter)
                info.pFilter->Release();
            Require(std::wstring_view(info.achName) == name && info.dir == direction,
                    std::string(effect.name) + ": the pins are not Input and Output");
        }
        RequireResult(pins->Next(1, pin.ReleaseAndGetAddressOf(), nullptr), S_FALSE, "the enumeration's end");
    }
}

void FindsPins(Subject& library)
{
    const auto filter = library.Filter(CLSID_Emboss);
    for (const auto& [id, direction] : {std::pair{L"In", PINDIR_INPUT}, {L"Out", PINDIR_OUTPUT}}) {
        ComPtr<IPin> pin;
        RequireResult(filter->FindPin(id, &pin), S_OK, "FindPin");
        PIN_DIRECTION found = PINDIR_INPUT;
        pin->QueryDirection(&found);
        RequireNumber(found, direction, "the direction of a pin that was asked for by its identifier");
    }
    ComPtr<IPin> pin;
    RequireResult(filter->FindPin(L"Input", &pin), VFW_E_NOT_FOUND, "FindPin(\"Input\")");
}

void ClassIds(Subject& library)
{
    for (const Promise& effect : Promises()) {
        CLSID id = {};
        RequireResult(library.Filter(*effect.classId)->GetClassID(&id), S_OK, "GetClassID");
        // The convolution effects are one class, which bears the identifier of "Add pixel".
        const bool convolution = effect.group != 3;
        Require(id == (convolution ? CLSID_AddPixel : *effect.classId),
                std::string(effect.name) + ": the filter names another class");
    }
}

// What the effect's input pin answers to a connection with a type; outside a graph.
HRESULT Offer(Subject& library, const CMediaType& type)
{
    const auto filter = library.Filter(CLSID_Emboss);
    const auto source = graph::FrameSource::Create(type);
    ComPtr<IPin> input;
    filter->FindPin(L"In", &input);
    const auto output = fixtures::FirstPin(source.Get());
    const HRESULT result = input->ReceiveConnection(output.Get(), &type);
    if (SUCCEEDED(result))
        input->Disconnect();
    return result;
}

void TypesAccepted(Subject& library)
{
    for (const Promise& effect : Promises())
        for (const bool second : {false, true}) {
            const auto filter = library.Filter(*effect.classId);
            ComPtr<IPin> input;
            filter->FindPin(L"In", &input);
            const CMediaType type = second ? fixtures::VideoType2(720, 576) : fixtures::VideoType(720, 576);
            RequireResult(input->QueryAccept(&type), S_OK, std::string(effect.name) + ": QueryAccept(RGB32)");
        }
}

void TypesRefused(Subject& library)
{
    for (const GUID* subtype : {&MEDIASUBTYPE_RGB24, &MEDIASUBTYPE_RGB555, &MEDIASUBTYPE_YUY2, &MEDIASUBTYPE_ARGB32}) {
        CMediaType type = fixtures::VideoType(32, 32);
        type.SetSubtype(subtype);
        RequireResult(Offer(library, type), VFW_E_TYPE_NOT_ACCEPTED, "the offer of another pixel format");
    }
    CMediaType audio = fixtures::VideoType(32, 32);
    audio.SetType(&MEDIATYPE_Audio);
    RequireResult(Offer(library, audio), VFW_E_TYPE_NOT_ACCEPTED, "the offer of sound");
    CMediaType format = fixtures::VideoType(32, 32);
    format.SetFormatType(&FORMAT_MPEGVideo);
    RequireResult(Offer(library, format), VFW_E_TYPE_NOT_ACCEPTED, "the offer of another header format");
}

void ShortFormats(Subject& library)
{
    for (const bool second : {false, true}) {
        CMediaType type = second ? fixtures::VideoType2(32, 32) : fixtures::VideoType(32, 32);
        const CMediaType whole = type;
        type.SetFormat(whole.Format(), whole.FormatLength() - 1);
        RequireResult(Offer(library, type), VFW_E_TYPE_NOT_ACCEPTED, "the offer of a type with a short header");
        type.ResetFormatBuffer();
        RequireResult(Offer(library, type), VFW_E_TYPE_NOT_ACCEPTED, "the offer of a type without a header");
    }
}

void OutsideGraph(Subject& library)
{
    const CMediaType type = fixtures::VideoType(32, 32);
    RequireResult(Offer(library, type), VFW_E_NOT_IN_GRAPH, "a connection outside a graph");
}

void OutputType(Subject& library)
{
    const CMediaType type = fixtures::VideoType2(64, -48);
    const auto filter = library.Filter(CLSID_Emboss);
    const fixtures::PushGraph graph(filter.Get(), type);
    ComPtr<IPin> output;
    filter->FindPin(L"Out", &output);
    CMediaType out;
    RequireResult(output->ConnectionMediaType(&out), S_OK, "ConnectionMediaType");
    Require(out == type, "the output's type is not the input's");
}

void NoTypesAlone(Subject& library)
{
    const auto filter = library.Filter(CLSID_Emboss);
    ComPtr<IPin> output;
    filter->FindPin(L"Out", &output);
    CMediaType out;
    RequireResult(output->ConnectionMediaType(&out), VFW_E_NOT_CONNECTED, "an open pin's ConnectionMediaType");
    ComPtr<IPin> peer;
    RequireResult(output->ConnectedTo(&peer), VFW_E_NOT_CONNECTED, "an open pin's ConnectedTo");
}

void States(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        FILTER_STATE state = State_Running;
        RequireResult(filter->GetState(0, &state), S_OK, "GetState");
        RequireNumber(state, State_Stopped, std::string(effect.name) + ": a new filter's state");
        const fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(8, 8));
        filter->GetState(0, &state);
        RequireNumber(state, State_Running, std::string(effect.name) + ": the state in a running graph");
    }
}

void Durations(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        const auto parameters = Parameters(filter.Get());
        for (const REFERENCE_TIME duration : {0LL, 1LL, -1LL, MAXLONGLONG})
            RequireResult(parameters->SetDuration(duration), S_OK, std::string(effect.name) + ": SetDuration");
    }
}

void Reconnects(Subject& library)
{
    const auto filter = library.Filter(CLSID_Emboss);
    fixtures::RecordedSet set(PromiseOf(CLSID_Emboss).working);
    Parameters(filter.Get())->SetPropertySet(&set);
    for (const LONG width : {16L, 7L, 33L}) {
        fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(width, 5));
        const auto out = graph.Through(std::vector<std::uint8_t>(static_cast<std::size_t>(width) * 20, 90));
        RequireNumber(out[static_cast<std::size_t>(width) * 4 + 4], 128, "an inner pixel of an even frame");
        RequireNumber(out[static_cast<std::size_t>(width) * 8 - 1], 0, "a border pixel after the size changed");
    }
}

constexpr Check filterChecks[] = {
    {"filters", "pins", "Each filter has the pins Input and Output.", Pins},
    {"filters", "find-pins", R"(FindPin knows "In" and "Out" and nothing else.)", FindsPins},
    {"filters", "class-ids", "GetClassID names the filter's class.", ClassIds},
    {"filters", "types-accepted", "32-bit RGB is taken with both header formats.", TypesAccepted},
    {"filters", "types-refused", "Any other type is refused with VFW_E_TYPE_NOT_ACCEPTED.", TypesRefused},
    {"filters", "short-formats", "A type with a missing or short header is refused.", ShortFormats},
    {"filters", "outside-graph", "A connection outside a graph fails with VFW_E_NOT_IN_GRAPH.", OutsideGraph},
    {"filters", "output-type", "The output has the input's type.", OutputType},
    {"filters", "unconnected", "Open pins answer VFW_E_NOT_CONNECTED.", NoTypesAlone},
    {"filters", "states", "A filter starts stopped and runs with its graph.", States},
    {"filters", "durations", "SetDuration takes any value.", Durations},
    {"filters", "reconnects", "A filter can be connected again with another frame size.", Reconnects},
};

} // namespace

std::span<const Check> FilterChecks()
{
    return filterChecks;
}

} // namespace vixahost::validate
