/*
** tests/platform/test_dialogs.h: test-only dialog templates registered in the test program's
** module, and a way to run them with a lambda as the dialog procedure.
*/
#ifndef PRAXA_TESTS_PLATFORM_TEST_DIALOGS_H
#define PRAXA_TESTS_PLATFORM_TEST_DIALOGS_H

#include <functional>
#include <string>
#include <vector>

#include "platform/driver.h"

namespace testdialogs {

using Procedure = std::function<INT_PTR(HWND, UINT, WPARAM, LPARAM)>;

/* The module of the test program, where the test templates and praxa.rc are registered. */
HMODULE testModule();

/* Registers (again) the test templates; `extraScript` adds a file "extra.rc" with that text. */
void registerTestTemplates();
void registerExtraScript(const std::string &text);

/* Runs the template `name` modally with `procedure` as its dialog procedure. */
INT_PTR run(const char *name, Procedure procedure, LPARAM initParam = 0);

/* A procedure that writes what it receives into `log` ("init first=101", "EN_SETFOCUS 101",
** "EN_CHANGE 101", "BN_CLICKED 1", "LBN_SELCHANGE 107", ...) and ends on IDOK/IDCANCEL. */
Procedure recorder(std::vector<std::string> &log);

}

#endif
