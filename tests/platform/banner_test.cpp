/*
** tests/platform/banner_test.cpp: the about box template that the build embeds, opened
** through the module handle of the code, as the plug-in opens it.
*/
#include <gtest/gtest.h>

#include <gnu/libc-version.h>

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

namespace {

TEST(Modules, HandlesByAddressAndByNameAgree)
{
    HMODULE fromAddress = nullptr, program = nullptr, libc = nullptr, libcByName = nullptr;
    ASSERT_TRUE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCSTR>(&bannerProcedure),
                                   &fromAddress));
    ASSERT_TRUE(GetModuleHandleExA(0, nullptr, &program));
    EXPECT_EQ(fromAddress, program);    /* the test program holds the windowing system */
    ASSERT_TRUE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCSTR>(&gnu_get_libc_version),
                                   &libc));
    EXPECT_NE(libc, program);
    ASSERT_TRUE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, "libc.so.6", &libcByName));
    EXPECT_EQ(libcByName, libc);

    HMODULE none = program;
    EXPECT_FALSE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, nullptr, &none));
    EXPECT_EQ(none, nullptr);
    EXPECT_FALSE(GetModuleHandleExA(0, "libnot-there.so", &none));
    EXPECT_FALSE(GetModuleHandleExA(0, nullptr, nullptr));

    /* Templates belong to their module: libc has none. */
    platform::resetWindowing();
    EXPECT_EQ(DialogBoxParamA(libc, "PRX_BANNER", nullptr, bannerProcedure, 0), -1);
    EXPECT_EQ(platform::transcriptText(), "[error] Dialog template PRX_BANNER not found\n");
}

}
