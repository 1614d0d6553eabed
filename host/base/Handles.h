// The owners of handles that the host uses: one alias per kind, each closed once.
#pragma once

#include "framework/Handles.h"

namespace vixahost {

using vixa::UniqueBitmap;
using vixa::UniqueEvent;
using vixa::UniqueHandle;
using vixa::UniqueMemoryDC;
using vixa::UniqueModule;
using vixa::UniqueScreenDC;

} // namespace vixahost
