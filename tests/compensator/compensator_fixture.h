/*
** tests/compensator/compensator_fixture.h: a fresh host with the plug-in and a plant
** in stateSpaceModel, the compensator design run as the Compensator Design command runs
** it, and the dialog's lists as OK or Cancel finds them.
*/
#ifndef PRAXA_TESTS_COMPENSATOR_FIXTURE_H
#define PRAXA_TESTS_COMPENSATOR_FIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "compensator/compensator.h"
#include "host/host.h"
#include "hostapp/host_state.h"
#include "linearize/linearize.h"
#include "platform/driver.h"
#include "resources/prxdlg.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "support.h"
#include "support/plugin_plot.h"
#include "support/model.h"
#include "xfer/xfer.h"

namespace comptest {

using namespace testing_support;

using platform::DialogAction;

inline const char *const DIALOG = "COMPENSATORDESIGN";

inline void type(int control, const std::string &text) { platform::queueDialogAction(typed(control, text, DIALOG)); }
inline void click(int control) { platform::queueDialogAction(press(control, DIALOG)); }

/* The gain edit and the two lists, one a line, as the first dialog in the transcript showed them. */
inline std::string shownDesign()
{
    std::string shown;
    for (auto [kind, id] : {std::pair{"edit", IDC_COMP_GAIN}, {"listbox", IDC_COMP_ZEROS}, {"listbox", IDC_COMP_POLES}})
        shown += shownControl("Compensator Design", kind, id) + "\n";
    return shown;
}

/* Each root typed into `edit` and added to its list. */
inline void queueRoots(int edit, const std::vector<std::string> &roots)
{
    for (const std::string &root : roots) {
        type(edit, root);
        click(IDC_COMP_ADD);
    }
}

/* The lead K (s + 1)/(s + 10): gain K, zero -1, pole -10, typed and added. */
inline void queueLead(const std::string &gain)
{
    type(IDC_COMP_GAIN, gain);
    queueRoots(IDC_COMP_ZERO_EDIT, {"-1"});
    queueRoots(IDC_COMP_POLE_EDIT, {"-10"});
}

/* The lists as the dialog held them when OK or Cancel was pressed, with their selections. */
struct ListState {
    std::vector<std::string> entries;
    int selected = -2;
};
inline ListState zerosAtEnd, polesAtEnd;
/* Whether the focus was on OK, and what the procedure answered, right after WM_INITDIALOG. */
inline bool focusOnOkAfterInit;
inline INT_PTR initDialogResult = -1;

inline ListState listState(HWND dialog, int id)
{
    ListState state;
    int count = (int)SendDlgItemMessageA(dialog, id, LB_GETCOUNT, 0, 0);
    for (int i = 0; i < count; i++) {
        char text[8192] = "";
        SendDlgItemMessageA(dialog, id, LB_GETTEXT, (WPARAM)i, (LPARAM)text);
        state.entries.push_back(text);
    }
    state.selected = (int)SendDlgItemMessageA(dialog, id, LB_GETCURSEL, 0, 0);
    return state;
}

/* compensatorDlg with the lists noted just before OK or Cancel is handled. */
inline INT_PTR spiedCompensatorDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        zerosAtEnd = listState(dialog, IDC_COMP_ZEROS);
        polesAtEnd = listState(dialog, IDC_COMP_POLES);
    }
    INT_PTR result = compensatorDlg(dialog, message, wParam, lParam);
    if (message == WM_INITDIALOG) {
        focusOnOkAfterInit = GetFocus() == GetDlgItem(dialog, IDOK);
        initDialogResult = result;
    }
    return result;
}

class CompensatorTest : public PluginTest {
protected:
    std::unique_ptr<xfertest::Model> plant;
    std::vector<std::pair<WPARAM, LPARAM>> hostCommands;

    void SetUp() override
    {
        PluginTest::SetUp();
        platform::setMainWindowHandler([this](UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (message == WM_COMMAND)
                hostCommands.push_back({wParam, lParam});
            return 0;
        });
        currentList = currentEdit = 0;
        /* 1/(s (s + 1)) */
        plant.reset(xfertest::controllableForm({1.0, 0.0}, {0.0, 1.0}));
        stateSpaceModel = {plant->A, plant->B, plant->C, plant->D};
    }

    void TearDown() override
    {
        stateSpaceModel = {};     /* the plant's matrices are the test's */
        currentList = currentEdit = 0;
        PluginTest::TearDown();
    }

    /* The Compensator Design command's part after the linearization. */
    void design()
    {
        timeToFrequency(plant->A, plant->B, plant->C, plant->D, nullptr, nullptr, nullptr, XFER_SHOW_COMPENSATOR);
    }

    /* The dialog run on the plant with the lists noted at its end; returns its end code. */
    INT_PTR designSpied()
    {
        /* currentXfer's lists exist only inside timeToFrequency: the plant's, no zeros and
        ** the poles 0 and -1, are put there by hand. */
        Complex poles[] = {{0, 0}, {-1, 0}};
        currentXfer.zeros = nullptr;
        currentXfer.zeroCount = 0;
        currentXfer.poles = poles;
        currentXfer.poleCount = 2;
        INT_PTR result = runDialog(DIALOG, spiedCompensatorDlg);
        currentXfer.poles = nullptr;
        return result;
    }
};

}

#endif
