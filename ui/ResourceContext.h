// What a dialog asks of its resource context: the module that holds its template and its tooltips' texts.
#pragma once

#include <windows.h>

class ResourceContext
{
public:
    virtual ~ResourceContext() = default;
    virtual HINSTANCE GetInstance() = 0;
};
