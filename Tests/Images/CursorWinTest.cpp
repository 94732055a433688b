#include <ORLCursor.h>

#include <gtest/gtest.h>

#include <windows.h>

TEST(Cursor, EachShape_IsTheSystems)
{
    const struct
    {
        void (*mSet)();
        const wchar_t* mName;
    } kRows[] = {
        {&ORL::Cursor::SetIBeamCursor, IDC_IBEAM},
        {&ORL::Cursor::SetWaitCursor, IDC_WAIT},
        {&ORL::Cursor::SetSizeCursor, IDC_SIZEALL},
        {&ORL::Cursor::SetArrowCursor, IDC_ARROW},
    };
    for (const auto& row : kRows) {
        row.mSet();
        EXPECT_EQ(::LoadCursorW(nullptr, row.mName), ::GetCursor());
        EXPECT_NE(nullptr, ::GetCursor());
    }
}
