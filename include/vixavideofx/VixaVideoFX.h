// Everything of this folder for C++, and the same for C and whoever reads C declarations for another language. C++ gets
// the other headers (Effects.h and EffectParameters.h, which need C++20, are left to who wants them); what each
// operation does, its threads and its errors stand there. The C declarations have the slots in their order; all calls
// are __stdcall.
#ifndef VIXAVIDEOFX_VIXAVIDEOFX_H
#define VIXAVIDEOFX_VIXAVIDEOFX_H

#if defined(__cplusplus) && !defined(CINTERFACE)

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/DataBlocks.h>
#include <vixavideofx/IEffectChaining.h>
#include <vixavideofx/IEffectFilter.h>
#include <vixavideofx/IEffectInfo.h>
#include <vixavideofx/IInstructionCeiling.h>
#include <vixavideofx/PropertySetInfos.h>
#include <vixavideofx/PropertySets.h>

#else

#include <vixavideofx/ClassIds.h>

#include <strmif.h>
#include <unknwn.h>

// NOLINTBEGIN(modernize-use-using, readability-identifier-naming): this is C, and pointers to an interface's methods
// have the methods' names

// Interface identifiers. Property sets have none: the library never asks for them.
static const IID IID_IEffectInfo = {0x194ADE67, 0xAFBF, 0x4A1F, {0x99, 0x78, 0x48, 0xB0, 0x5C, 0xEF, 0xB0, 0x83}};
static const IID IID_IEffectFilter = {0xA67B871C, 0x0AD5, 0x4088, {0x89, 0x75, 0xDC, 0x79, 0x7B, 0x6B, 0x42, 0xD8}};
static const IID IID_IInstructionCeiling = {
    0x8E0C4C2B, 0x5B7F, 0x4D0A, {0x9C, 0x0B, 0x3A, 0xF1, 0x6D, 0x52, 0xE7, 0x94}};
static const IID IID_IEffectChaining = {0x5D8A1E46, 0x0C3B, 0x4F52, {0x8B, 0x7E, 0x94, 0xD2, 0x6A, 0x10, 0xC3, 0xF7}};
static const IID IID_ISingleValuePropertySetInfo = {
    0x333C3010, 0xD31F, 0x4861, {0xB1, 0xA6, 0x3F, 0x06, 0x6F, 0x7E, 0xCB, 0xAB}};
static const IID IID_ISingleEnumPropertySetInfo = {
    0x0C36C773, 0x38DF, 0x49C8, {0xA5, 0x35, 0xA0, 0xB0, 0xB1, 0xB6, 0x01, 0xDA}};

// The property sets, implemented by the host.
typedef struct IDataPropertySet
{
    const struct IDataPropertySetVtbl* lpVtbl;
} IDataPropertySet;
typedef struct IDataPropertySetVtbl
{
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(IDataPropertySet* This, REFIID riid, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(IDataPropertySet* This);
    ULONG(STDMETHODCALLTYPE* Release)(IDataPropertySet* This);
    HRESULT(STDMETHODCALLTYPE* GetData)(IDataPropertySet* This, void* buffer, int* size);
    HRESULT(STDMETHODCALLTYPE* SetData)(IDataPropertySet* This, const void* data, int size);
} IDataPropertySetVtbl;

typedef struct ISingleValuePropertySet
{
    const struct ISingleValuePropertySetVtbl* lpVtbl;
} ISingleValuePropertySet;
typedef struct ISingleValuePropertySetVtbl
{
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(ISingleValuePropertySet* This, REFIID riid, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(ISingleValuePropertySet* This);
    ULONG(STDMETHODCALLTYPE* Release)(ISingleValuePropertySet* This);
    HRESULT(STDMETHODCALLTYPE* GetValue)(ISingleValuePropertySet* This, double* value);
    HRESULT(STDMETHODCALLTYPE* SetValue)(ISingleValuePropertySet* This, double value);
} ISingleValuePropertySetVtbl;

typedef struct ISingleEnumPropertySet
{
    const struct ISingleEnumPropertySetVtbl* lpVtbl;
} ISingleEnumPropertySet;
typedef struct ISingleEnumPropertySetVtbl
{
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(ISingleEnumPropertySet* This, REFIID riid, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(ISingleEnumPropertySet* This);
    ULONG(STDMETHODCALLTYPE* Release)(ISingleEnumPropertySet* This);
    HRESULT(STDMETHODCALLTYPE* GetValue)(ISingleEnumPropertySet* This, long* index);
    HRESULT(STDMETHODCALLTYPE* SetValue)(ISingleEnumPropertySet* This, long index);
} ISingleEnumPropertySetVtbl;

// The catalogue, from a class factory's QueryInterface.
typedef struct IEffectInfo
{
    const struct IEffectInfoVtbl* lpVtbl;
} IEffectInfo;
typedef struct IEffectInfoVtbl
{
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(IEffectInfo* This, REFIID riid, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(IEffectInfo* This);
    ULONG(STDMETHODCALLTYPE* Release)(IEffectInfo* This);
    HRESULT(STDMETHODCALLTYPE* GetTypeCode)(IEffectInfo* This, ULONG* code);
    HRESULT(STDMETHODCALLTYPE* GetGroupId)(IEffectInfo* This, ULONG* group);
    HRESULT(STDMETHODCALLTYPE* GetGroupName)(IEffectInfo* This, ULONG ignored, WCHAR* buffer, ULONG* length);
    HRESULT(STDMETHODCALLTYPE* GetSubtypeCode)(IEffectInfo* This, ULONG* code);
    HRESULT(STDMETHODCALLTYPE* GetEffectName)(IEffectInfo* This, ULONG language, WCHAR* buffer, ULONG* length);
    HRESULT(STDMETHODCALLTYPE* GetIcon)(IEffectInfo* This, BYTE* buffer, ULONG* size);
    HRESULT(STDMETHODCALLTYPE* GetSecondBitmap)(IEffectInfo* This, BYTE* buffer, ULONG* size, ULONG* value);
    HRESULT(STDMETHODCALLTYPE* GetPropertySetKind)(IEffectInfo* This, ULONG* kind);
    HRESULT(STDMETHODCALLTYPE* GetPropertySetInfo)(IEffectInfo* This, IUnknown** info);
    HRESULT(STDMETHODCALLTYPE* SetDefaults)(IEffectInfo* This, IUnknown* propertySet);
    HRESULT(STDMETHODCALLTYPE* ShowSettingsDialog)
    (IEffectInfo* This, ULONG ignored, HWND parent, UINT notifyMessage, IUnknown* propertySet, HWND* window);
    HRESULT(STDMETHODCALLTYPE* GetSortKey)(IEffectInfo* This, ULONG* key);
    HRESULT(STDMETHODCALLTYPE* GetVersion)(IEffectInfo* This, ULONG* version);
} IEffectInfoVtbl;

// Parameters into a filter, from its QueryInterface.
typedef struct IEffectFilter
{
    const struct IEffectFilterVtbl* lpVtbl;
} IEffectFilter;
typedef struct IEffectFilterVtbl
{
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(IEffectFilter* This, REFIID riid, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(IEffectFilter* This);
    ULONG(STDMETHODCALLTYPE* Release)(IEffectFilter* This);
    HRESULT(STDMETHODCALLTYPE* SetPropertySet)(IEffectFilter* This, IUnknown* propertySet);
    HRESULT(STDMETHODCALLTYPE* SetDuration)(IEffectFilter* This, REFERENCE_TIME duration);
} IEffectFilterVtbl;

// The instruction sets that a filter may use, from its QueryInterface: 0 plain, 1 SSE2, 2 AVX2, 3 AVX-512.
typedef struct IInstructionCeiling
{
    const struct IInstructionCeilingVtbl* lpVtbl;
} IInstructionCeiling;
typedef struct IInstructionCeilingVtbl
{
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(IInstructionCeiling* This, REFIID riid, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(IInstructionCeiling* This);
    ULONG(STDMETHODCALLTYPE* Release)(IInstructionCeiling* This);
    HRESULT(STDMETHODCALLTYPE* SetCeiling)(IInstructionCeiling* This, ULONG level);
    HRESULT(STDMETHODCALLTYPE* GetLevel)(IInstructionCeiling* This, ULONG* level);
} IInstructionCeilingVtbl;

// Whether a filter makes its frames together with its neighbours, from its QueryInterface.
typedef struct IEffectChaining
{
    const struct IEffectChainingVtbl* lpVtbl;
} IEffectChaining;
typedef struct IEffectChainingVtbl
{
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(IEffectChaining* This, REFIID riid, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(IEffectChaining* This);
    ULONG(STDMETHODCALLTYPE* Release)(IEffectChaining* This);
    HRESULT(STDMETHODCALLTYPE* SetChaining)(IEffectChaining* This, BOOL together);
    HRESULT(STDMETHODCALLTYPE* GetChaining)(IEffectChaining* This, BOOL* together);
} IEffectChainingVtbl;

// Descriptions of parameters that are one number or one choice.
typedef struct ISingleValuePropertySetInfo
{
    const struct ISingleValuePropertySetInfoVtbl* lpVtbl;
} ISingleValuePropertySetInfo;
typedef struct ISingleValuePropertySetInfoVtbl
{
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(ISingleValuePropertySetInfo* This, REFIID riid, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(ISingleValuePropertySetInfo* This);
    ULONG(STDMETHODCALLTYPE* Release)(ISingleValuePropertySetInfo* This);
    HRESULT(STDMETHODCALLTYPE* GetRange)
    (ISingleValuePropertySetInfo* This, double* minimum, double* maximum, double* step);
    HRESULT(STDMETHODCALLTYPE* FormatValue)
    (ISingleValuePropertySetInfo* This, LANGID language, double value, WCHAR* text, ULONG* length);
    HRESULT(STDMETHODCALLTYPE* GetImage)(ISingleValuePropertySetInfo* This, BYTE* buffer, ULONG* size);
    HRESULT(STDMETHODCALLTYPE* GetName)(ISingleValuePropertySetInfo* This, LANGID language, WCHAR* text, ULONG* length);
} ISingleValuePropertySetInfoVtbl;

typedef struct ISingleEnumPropertySetInfo
{
    const struct ISingleEnumPropertySetInfoVtbl* lpVtbl;
} ISingleEnumPropertySetInfo;
typedef struct ISingleEnumPropertySetInfoVtbl
{
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(ISingleEnumPropertySetInfo* This, REFIID riid, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(ISingleEnumPropertySetInfo* This);
    ULONG(STDMETHODCALLTYPE* Release)(ISingleEnumPropertySetInfo* This);
    HRESULT(STDMETHODCALLTYPE* GetCount)(ISingleEnumPropertySetInfo* This, ULONG* count);
    HRESULT(STDMETHODCALLTYPE* GetItemName)
    (ISingleEnumPropertySetInfo* This, LANGID language, long index, WCHAR* text, ULONG* length);
    HRESULT(STDMETHODCALLTYPE* GetImage)(ISingleEnumPropertySetInfo* This, BYTE* buffer, ULONG* size);
    HRESULT(STDMETHODCALLTYPE* GetName)(ISingleEnumPropertySetInfo* This, LANGID language, WCHAR* text, ULONG* length);
} ISingleEnumPropertySetInfoVtbl;

// Which property set an effect takes.
enum
{
    VixaPropertySetNone = 0,
    VixaPropertySetDataBlock = 1,
    VixaPropertySetSingleValue = 2,
    VixaPropertySetSingleEnum = 3
};

// The data blocks, one for each kind of effect; DataBlocks.h gives ranges and defaults.
typedef struct VixaGammaBlock
{
    INT32 gamma;
} VixaGammaBlock;

typedef struct VixaMultiplyBlock
{
    INT32 factor;
} VixaMultiplyBlock;

typedef struct VixaInvertBlock
{
    INT32 mask; // blue 1 + green 2 + red 4
} VixaInvertBlock;

typedef struct VixaFilterColorBlock
{
    INT32 intensity;
    INT32 colour; // 0 blue, 1 green, 2 red
} VixaFilterColorBlock;

typedef struct VixaAddBlock
{
    INT32 redDelta;
    INT32 greenDelta;
    INT32 blueDelta;
    INT32 moveAll;
} VixaAddBlock;

typedef struct VixaConvolutionBlock
{
    INT32 kind; // one of the numbers below
} VixaConvolutionBlock;

enum
{
    VixaDetectEdges = 1,
    VixaEmboss = 2,
    VixaEnhanceDetails = 3,
    VixaEnhanceEdges = 4,
    VixaEnhanceFocus = 5,
    VixaLightEdges = 6,
    VixaShiftEdges = 7,
    VixaSoften = 8,
    VixaShiftEdgesVertical = 9,
    VixaShiftEdgesHorizontal = 10
};

// NOLINTEND(modernize-use-using, readability-identifier-naming)

#endif

#endif
