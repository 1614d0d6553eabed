// The owners of handles that the host uses: one alias per kind, each closed once.
#pragma once

#include "framework/Handles.h"

namespace vixahost {

using vixa::Opened;
using vixa::UniqueBitmap;
using vixa::UniqueEvent;
using vixa::UniqueFile;
using vixa::UniqueFont;
using vixa::UniqueHandle;
using vixa::UniqueMemoryDC;
using vixa::UniqueModule;
using vixa::UniquePipe;
using vixa::UniqueProcess;
using vixa::UniqueScreenDC;
using vixa::UniqueThread;
using vixa::UniqueWindowDC;

using UniqueSearch = UniqueHandle<HANDLE, FindClose>; // of files
using UniqueMapping = vixa::UniqueKernelObject<struct MappingKind>;
using UniqueView = UniqueHandle<void*, UnmapViewOfFile>; // of a mapping
using UniqueSnapshot = vixa::UniqueKernelObject<struct SnapshotKind>;

} // namespace vixahost
