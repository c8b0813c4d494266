/*
** tests/platform/banner_test.cpp: the about box template that the build embeds, opened
** through the module handle of the code, as the plug-in opens it.
*/
#include <gtest/gtest.h>

#include "platform/driver.h"

namespace {

INT_PTR bannerProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        SetDlgItemTextA(dialog, 100, "Version  Build 10623.0");
        return TRUE;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
        EndDialog(dialog, 1);
        return TRUE;
    }
    return FALSE;
}

TEST(Banner, OpensFromTheModuleOfTheCodeAndShowsEveryControl)
{
    platform::resetWindowing();
    HMODULE module = nullptr;
    ASSERT_TRUE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                       GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                   reinterpret_cast<LPCSTR>(&bannerProcedure), &module));
    EXPECT_EQ(DialogBoxParamA(module, "prx_banner", GetFocus(), bannerProcedure, 0), 1);
    EXPECT_EQ(platform::transcriptText(),
              "[dialog] About Praxa\n"
              "  static 215 \"\"\n"
              "  static -1 \"Tervan/PRAXA\"\n"
              "  static 100 \"Version  Build 10623.0\"\n"
              "  static -1 \"Control-systems analysis for Tervan block diagrams.\"\n"
              "  static -1 \"Copyright (c) the Praxa developers. All rights reserved.\"\n"
              "  default-button 1 \"OK\"\n"
              "  > default 1\n"
              "[end] About Praxa: 1\n");
    EXPECT_EQ(platform::refusedDialogCount(), 0);
}

}
