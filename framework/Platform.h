// The platform's DirectShow headers, in the order in which they compile, for every file of the framework.
#pragma once

#include <windows.h>

#include <objbase.h>

#include <dshow.h>

#include <dvdmedia.h>
#include <wrl/client.h>

using Microsoft::WRL::ComPtr;
