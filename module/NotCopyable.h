// A base for classes whose objects can't be copied.
#pragma once

class NotCopyable
{
protected:
    NotCopyable() = default;
    ~NotCopyable() = default;

public:
    NotCopyable(const NotCopyable&) = delete;
    NotCopyable& operator=(const NotCopyable&) = delete;
};
