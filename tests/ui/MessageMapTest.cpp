// Which rows of a message map answer which messages, and with which arguments.
#include "ui/CBaseWnd.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class Recorder final : public CBaseWnd
{
public:
    explicit Recorder(const MessageMapEntry* rows) : map(rows) {}
    const MessageMapEntry* GetMessageMap() override { return map; }
    virtual void Command() { log += "c "; }
    virtual void Other() { log += "o "; }
    virtual void One(WPARAM wParam) { log += "1:" + std::to_string(wParam) + " "; }
    virtual void Two(LPARAM lParam, WPARAM wParam)
    {
        log += "2:" + std::to_string(lParam) + "," + std::to_string(wParam) + " ";
    }

    std::string Send(UINT message, WPARAM wParam, LPARAM lParam)
    {
        log.clear();
        OnMessage(message, wParam, lParam);
        return log;
    }

private:
    const MessageMapEntry* map;
    std::string log;
};

TEST(MessageMap, CommandRowsMatchControlAndCode)
{
    static const MessageMapEntry map[] = {
        CommandRow(WM_COMMAND, 1003, 9, &Recorder::Command),
        CommandRow(WM_COMMAND, 7, 0, &Recorder::Other),
        CommandRow(WM_DESTROY, 0, 0, &Recorder::Command),
        CommandRow(WM_TIMER, 0, 5, &Recorder::Other),
        endOfMap,
        CommandRow(WM_COMMAND, 0, 0, &Recorder::Other),
    };
    Recorder window(map);
    const LPARAM control = 77;
    EXPECT_EQ(window.Send(WM_COMMAND, MAKEWPARAM(1003, 9), control), "c ");
    for (int code : {0, 1, 8, 10, 0x8009})
        EXPECT_EQ(window.Send(WM_COMMAND, MAKEWPARAM(1003, code), control), "") << code;
    EXPECT_EQ(window.Send(WM_COMMAND, MAKEWPARAM(1004, 9), control), "");
    EXPECT_EQ(window.Send(WM_COMMAND, MAKEWPARAM(7, 0xFFFF), control), "o ") << "code 0 of a row stands for any";
    EXPECT_EQ(window.Send(WM_DESTROY, 0x12345678, 0), "c ") << "control and code 0 match every message of the number";
    EXPECT_EQ(window.Send(WM_TIMER, MAKEWPARAM(0, 5), 0), "o ");
    EXPECT_EQ(window.Send(WM_TIMER, MAKEWPARAM(1, 5), 0), "") << "control 0 alone is no wildcard";
    EXPECT_EQ(window.Send(WM_NOTIFY, MAKEWPARAM(1003, 9), control), "");
}

TEST(MessageMap, EveryMatchingRowRunsInOrderWithItsArguments)
{
    static const MessageMapEntry map[] = {
        MessageRow(WM_HSCROLL, &Recorder::Two),
        MessageRow(WM_INITDIALOG, &Recorder::One),
        MessageRow(WM_HSCROLL, &Recorder::One),
        CommandRow(WM_HSCROLL, 5, 0, &Recorder::Command),
        endOfMap,
    };
    Recorder window(map);
    EXPECT_EQ(window.Send(WM_HSCROLL, MAKEWPARAM(5, 1), 12), "2:12,65541 1:65541 c ");
    EXPECT_EQ(window.Send(WM_INITDIALOG, 42, 3), "1:42 ");
    Recorder without(nullptr);
    EXPECT_EQ(without.Send(WM_HSCROLL, 1, 2), "");
}

TEST(MessageMap, RowsWithoutHandlerOrOfUnknownKindAreSkipped)
{
    MessageMapEntry unknown = MessageRow(WM_USER, &Recorder::One);
    unknown.kind = static_cast<MessageMapEntry::Kind>(3);
    const MessageMapEntry map[] = {
        {WM_USER, MessageMapEntry::Command, 0, 0, {.command = nullptr}},
        {WM_USER, MessageMapEntry::OneArgument, 0, 0, {.oneArgument = nullptr}},
        {WM_USER, MessageMapEntry::TwoArguments, 0, 0, {.twoArguments = nullptr}},
        unknown,
        CommandRow(WM_USER, 0, 0, &Recorder::Other),
        endOfMap,
    };
    Recorder window(map);
    EXPECT_EQ(window.Send(WM_USER, 0, 0), "o ");
}

} // namespace
