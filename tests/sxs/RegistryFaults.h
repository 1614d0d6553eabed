// Stands between a test program's code and the system's registry functions: keeps a record of the calls and of the keys
// that are open, and makes chosen calls fail. Works by defining the program's own import entries, so that the code
// under test is the code that ships. A program that links this goes through it in all that is linked into it
// statically.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace registry_faults {

struct Call
{
    std::string function; // "RegSetValueExW"
    HKEY key;
    std::wstring name; // a key's path or a value's name
    REGSAM access;     // asked for, 0 for functions without
};

// While one lives, calls go to the system without being recorded or decided on: for what the test itself does.
class Bypass
{
public:
    Bypass();
    ~Bypass();
};

// Forgets the record, lets every call through.
void Reset();

// Asked before each call but closing: a status other than 0 is answered in the system's place.
void OnCall(std::function<LSTATUS(const Call&)> decide);

// Makes the call with this number (from 0) fail with access denied, and nothing else.
void FailCall(std::size_t number);

const std::vector<Call>& Calls();

// Keys opened and not closed; a key that was closed without being open counts as an error of its own.
std::size_t OpenKeys();

} // namespace registry_faults
